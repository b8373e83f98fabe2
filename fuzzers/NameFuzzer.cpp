#include "Discovery/Message/DiscoveryMessageType.h"
#include "Server/DiscoveryServiceState.h"
#include "Server/ServerActionType.h"
#include "support/ValueText.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Threading/ThreadState.h"

#include <algorithm>
#include <iterator>

namespace
{
/// The names of a table and nothing else are valid, case included.
template <class T>
void FuzzName(std::string_view text)
{
    Fuzzing::FuzzValueText<T>(
        text, std::any_of(std::begin(T::Names), std::end(T::Names),
                          [text](const Nfx::System::EnumName& row) { return std::string_view(row.Name) == text; }));
}
} // namespace

void Fuzzing::Fuzz(std::string_view input)
{
    FuzzValueText<Nfx::System::Boolean>(input, input == "True" || input == "False");
    FuzzName<Zent::Discovery::DiscoveryMessageType>(input);
    FuzzName<Zent::Discovery::Server::DiscoveryServiceState>(input);
    FuzzName<Zent::Discovery::Server::ServerActionType>(input);
    FuzzName<Nfx::System::LogStreams::LogStreamLevel>(input);
    FuzzName<Nfx::System::Net::Sockets::SocketError>(input);
    FuzzName<Nfx::System::Threading::ThreadState>(input);
}
