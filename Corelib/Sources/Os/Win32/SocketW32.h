#pragma once

#include "Os/ISocket.h"

namespace Nfx::Os
{
/// Sockets of Winsock, which is started with the first one and stays started: threads may use sockets until the process
/// ends. Shutting a socket down wakes nobody who blocks on it, but whoever starts to receive afterwards is refused; so
/// what blocks is cancelled after it, and the handle can stay until EndClose.
class SocketW32 final : public ISocket
{
public:
    std::int32_t Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept override;
    std::int32_t SetOption(Handle handle, std::int32_t level, std::int32_t name, std::int32_t value) noexcept override;
    std::int32_t Bind(Handle handle, const std::uint8_t* address) noexcept override;
    std::int32_t Connect(Handle handle, const std::uint8_t* address) noexcept override;
    std::int32_t LocalAddress(Handle handle, std::uint8_t* address) noexcept override;
    std::int32_t SendTo(Handle handle,
                        const std::uint8_t* bytes,
                        std::int32_t count,
                        const std::uint8_t* address,
                        std::int32_t& sent) noexcept override;
    std::int32_t ReceiveFrom(Handle handle,
                             std::uint8_t* buffer,
                             std::int32_t size,
                             std::uint8_t* address,
                             std::int32_t& received) noexcept override;
    std::int32_t Available(Handle handle, std::int32_t& size) noexcept override;
    std::int32_t Shutdown(Handle handle, std::int32_t how) noexcept override;
    void BeginClose(Handle handle) noexcept override;
    void EndClose(Handle handle) noexcept override;
    bool IsPortUsed(std::int32_t port) noexcept override;
};
} // namespace Nfx::Os
