#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// IPv4 datagram sockets of the platform.
///
/// Types, protocols, options and errors are Winsock's numbers everywhere; each operation returns an error number, 0 for
/// success. Addresses are 16 bytes in the layout of Nfx::System::Net::SocketAddress.
/// Any thread may call any operation, several at once on one socket. A socket is closed in two steps, so that its
/// handle cannot become something else while an operation is still using it: BeginClose wakes the operations, and once
/// the last one has returned EndClose gives the handle back.
class ISocket
{
public:
    using Handle = std::intptr_t;

    static constexpr std::int32_t Success = 0;
    static constexpr std::int32_t AddressSize = 16;

    ISocket(const ISocket&) = delete;
    ISocket& operator=(const ISocket&) = delete;

    /// Opens a socket that child processes do not inherit. The handle is set on success only.
    virtual std::int32_t Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept = 0;

    /// Timeouts are milliseconds. An option that the platform does not have gives 10042.
    virtual std::int32_t SetOption(Handle handle,
                                   std::int32_t level,
                                   std::int32_t name,
                                   std::int32_t value) noexcept = 0;

    virtual std::int32_t Bind(Handle handle, const std::uint8_t* address) noexcept = 0;
    virtual std::int32_t Connect(Handle handle, const std::uint8_t* address) noexcept = 0;

    /// The address that the socket is bound to.
    virtual std::int32_t LocalAddress(Handle handle, std::uint8_t* address) noexcept = 0;

    /// Sends one datagram; sent is set on success only.
    virtual std::int32_t SendTo(Handle handle,
                                const std::uint8_t* bytes,
                                std::int32_t count,
                                const std::uint8_t* address,
                                std::int32_t& sent) noexcept = 0;

    /// Blocks for one datagram; received and address mean something on success only. A datagram longer than size is
    /// lost and gives 10040; a socket that is shut down, by whomever, gives 10058.
    virtual std::int32_t ReceiveFrom(Handle handle,
                                     std::uint8_t* buffer,
                                     std::int32_t size,
                                     std::uint8_t* address,
                                     std::int32_t& received) noexcept = 0;

    /// The size of the datagram that waits to be received; 0 also when none does.
    virtual std::int32_t Available(Handle handle, std::int32_t& size) noexcept = 0;

    /// how: 0 ends receiving, 1 sending, 2 both. Wakes a blocked receiver when receiving ends.
    virtual std::int32_t Shutdown(Handle handle, std::int32_t how) noexcept = 0;

    /// Wakes the operations that block on the socket, for good. Once per socket.
    virtual void BeginClose(Handle handle) noexcept = 0;

    /// Gives the handle back. Once per socket, after BeginClose and after the last operation on it.
    virtual void EndClose(Handle handle) noexcept = 0;

    /// True when any datagram socket of this machine is bound to the port, on whatever address. False also where the
    /// platform does not tell.
    virtual bool IsPortUsed(std::int32_t port) noexcept = 0;

protected:
    ISocket() = default;
    virtual ~ISocket() = default;
};
} // namespace Nfx::Os
