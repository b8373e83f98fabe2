#include "Discovery/Message/DiscoveryMessageType.h"
#include "Server/DiscoveryServiceState.h"
#include "Server/ServerAction.h"
#include "support/ValueText.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Threading/ThreadState.h"

#include <algorithm>
#include <iterator>

namespace
{
/// Whether the text is one of the table's names, case included.
template <class T>
bool IsName(std::string_view text)
{
    return std::any_of(std::begin(T::Names), std::end(T::Names),
                       [text](const Nfx::System::EnumName& row) { return std::string_view(row.Name) == text; });
}

/// The names of a table and nothing else are valid.
template <class T>
void FuzzName(std::string_view text)
{
    Fuzzing::FuzzValueText<T>(text, IsName<T>(text));
}

/// Flags are valid as a list of the table's names, in any order and as often as one likes.
template <class T>
void FuzzFlags(std::string_view text)
{
    constexpr std::string_view separator = ", ";
    bool isValid = true;
    std::string_view rest = text;
    for (std::size_t end = rest.find(separator); end != std::string_view::npos; end = rest.find(separator))
    {
        isValid = isValid && IsName<T>(rest.substr(0, end));
        rest.remove_prefix(end + separator.size());
    }
    Fuzzing::FuzzValueText<T>(text, isValid && IsName<T>(rest));
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
    FuzzFlags<Nfx::System::Threading::ThreadState>(input);
}
