#pragma once

#include "system/Exceptions.h"
#include "system/Net/Sockets/SocketError.h"

namespace Nfx::System::Net::Sockets
{
/// A socket operation failed; which way, its SocketError says.
class SocketException final : public SystemException
{
public:
    /// sourceFile is a literal relative to the source tree.
    SocketException(const SocketError& error, const char* sourceFile, std::int32_t line);

    const SocketError& GetSocketError() const noexcept { return socketError; }

    const String& GetDefaultMessage() const override;
    const Error& GetDefaultError() const override;

private:
    SocketError socketError;
};
} // namespace Nfx::System::Net::Sockets
