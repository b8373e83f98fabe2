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
    static const String& text = *new String("The Socket operation failed.");
    return text;
}

const Error& SocketException::GetDefaultError() const
{
    static const Error& error = *new Error(ErrorCodes::Socket);
    return error;
}
} // namespace Nfx::System::Net::Sockets
