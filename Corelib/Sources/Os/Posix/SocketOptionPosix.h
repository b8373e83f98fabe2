#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// Sets socket options that are named by Winsock's levels and numbers.
///
/// A receive timeout of 0 becomes a heart beat of the system's: a receive that waits for ever would not notice when
/// somebody closes its descriptor. Callers of the socket layer do not see it.
class SocketOptionPosix final
{
public:
    SocketOptionPosix() = delete;

    static constexpr std::int32_t HeartBeatMilliseconds = 500;

    /// False with errno set on failure: ENOPROTOOPT for an option that this platform does not have.
    static bool Set(int descriptor, std::int32_t level, std::int32_t name, std::int32_t value) noexcept;

    /// True when a caller has set a receive timeout; the heart beat does not count.
    static bool HasReceiveTimeout(int descriptor) noexcept;
};
} // namespace Nfx::Os
