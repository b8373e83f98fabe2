#include "system/Net/Sockets/SocketException.h"

namespace Nfx::System::Net::Sockets
{
SocketException::SocketException(const SocketError& error, const char* sourceFile, std::int32_t line)
    : SystemException(sourceFile, line)
    , socketError(error)
{
    RecordText(" (" + socketError.ToString() + ")");
}

const String& SocketException::GetDefaultMessage() const
{
    static const Immortal<String> text("The Socket operation failed.");
    return text.Get();
}

const Error& SocketException::GetDefaultError() const
{
    static const Immortal<Error> error(ErrorCodes::Socket);
    return error.Get();
}
} // namespace Nfx::System::Net::Sockets
