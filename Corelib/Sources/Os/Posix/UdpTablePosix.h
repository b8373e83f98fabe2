#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// The kernel's tables of datagram sockets.
class UdpTablePosix final
{
public:
    UdpTablePosix() = delete;

    /// True when a line of the table names the port as a local one; false when the table cannot be read.
    static bool Has(const char* path, std::int32_t port) noexcept;
};
} // namespace Nfx::Os
