#include "DiscoveryServerExtCFacade.h"
#include "support/FuzzTarget.h"
#include "support/Grammar.h"

#include <cstdlib>
#include <initializer_list>
#include <string>

namespace ErrorCodes = Nfx::System::ErrorCodes;
namespace ExtC = Zent::Discovery::ExtC;
using Fuzzing::Check;

namespace
{
/// Checks a result against those that the call may have, and that it has a text.
void CheckCode(std::int32_t code, std::initializer_list<std::int32_t> allowed)
{
    bool isAllowed = false;
    for (const std::int32_t one : allowed)
    {
        isAllowed = isAllowed || one == code;
    }
    Check(isAllowed, "the code says what is wrong with the arguments");
    char* const message = ExtC::GetErrorMessage(code);
    Check(message != nullptr && message[0] != '\0', "every result has a text");
    std::free(message);
}

/// Calls everything that takes text, as the host does: exceptions would end the program. The server is not started, so
/// a request with good arguments is refused for that.
void Call(const char* first, const char* second) noexcept
{
    using Fuzzing::Grammar;
    const std::int32_t request = ErrorCodes::NullPointer;
    const std::int32_t malformed = ErrorCodes::InvalidFormat;
    const std::int32_t macAddress = Grammar::IsMACAddress(first) ? request : malformed;
    const std::int32_t ipAddress = Grammar::IsIPAddress(first) ? request : malformed;
    CheckCode(ExtC::RefreshClient(first), {macAddress});
    CheckCode(ExtC::ReachClient(first), {ipAddress});
    CheckCode(ExtC::ChangeClientsHostName(second, first), {macAddress});
    CheckCode(ExtC::ChangeClientsHostNameWithIP(second, first), {ipAddress});
    CheckCode(ExtC::SetMinCompatibleVersion(first), {Grammar::IsVersion(first) ? ErrorCodes::None : malformed});
    CheckCode(ExtC::InitBroadcastProvider(first), {ErrorCodes::None, malformed, ErrorCodes::ResourceNotFound});
    CheckCode(ExtC::ChangeClientsIPConfigurations(first), {request, malformed, ErrorCodes::ResourceNotFound});
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return ExtC::Initialize("/dev/null", DiscoveryLogDebug);
}

/// The input is two arguments, parted by the first line break.
void Fuzzing::Fuzz(std::string_view input)
{
    const std::size_t lineBreak = input.find('\n');
    const std::string first(input.substr(0, lineBreak));
    const std::string second(lineBreak == std::string_view::npos ? input : input.substr(lineBreak + 1));
    Call(first.c_str(), second.c_str());
}
