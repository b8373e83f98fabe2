#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// Names the failures of this platform's socket calls by the numbers that the framework uses on every platform.
class SocketErrorPosix final
{
public:
    SocketErrorPosix() = delete;

    /// The number for an errno value of any call; one without a name stays as it is.
    static std::int32_t FromErrno(int error) noexcept;

    /// The same for sends and receives, where a refusal is the peer's answer to an earlier datagram.
    static std::int32_t FromTransferErrno(int error) noexcept;
};
} // namespace Nfx::Os
