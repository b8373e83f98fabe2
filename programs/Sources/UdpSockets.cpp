#include "Programs/UdpSockets.h"

#include "system/Net/Sockets/Socket.h"
#include "system/Net/Sockets/SocketException.h"

using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketException;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketType;

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

bool UdpSockets::CanShare(std::uint16_t port)
{
    try
    {
        Socket probe(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp);
        probe.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, true);
        probe.Bind(SmartPointer<EndPoint>(new IPEndPoint(IPAddress::Any(), port)));
        return true;
    }
    catch (const SocketException&)
    {
        return false;
    }
}
} // namespace Zent::Discovery::Programs
