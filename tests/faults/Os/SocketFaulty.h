#pragma once

#include "Os/ISocket.h"

namespace Tests
{
/// The platform's sockets, which fail as Faults says.
class SocketFaulty final : public Nfx::Os::ISocket
{
public:
    explicit SocketFaulty(Nfx::Os::ISocket& real)
        : real(real)
    {
    }

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

private:
    Nfx::Os::ISocket& real;
};
} // namespace Tests
