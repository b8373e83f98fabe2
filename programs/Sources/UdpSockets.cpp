#include "Programs/UdpSockets.h"

namespace Zent::Discovery::Programs
{
std::optional<std::uint64_t> UdpSockets::OwnDrops(std::uint16_t port)
{
    std::optional<std::uint64_t> drops;
    for (const UdpSocket& socket : OnPort(port))
    {
        if (socket.IsOwn && socket.Drops)
        {
            drops = drops.value_or(0) + *socket.Drops;
        }
    }
    return drops;
}
} // namespace Zent::Discovery::Programs
