#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// Sets socket options that are named by Winsock's levels and numbers.
class SocketOptionPosix final
{
public:
    SocketOptionPosix() = delete;

    /// False with errno set on failure: ENOPROTOOPT for an option that this platform does not have.
    static bool Set(int descriptor, std::int32_t level, std::int32_t name, std::int32_t value) noexcept;
};
} // namespace Nfx::Os
