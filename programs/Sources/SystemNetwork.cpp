#include "Programs/SystemNetwork.h"

#include "system/Net/Sockets/Socket.h"
#include "system/Net/Sockets/SocketException.h"

using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketException;
using Nfx::System::Net::Sockets::SocketType;

namespace Zent::Discovery::Programs
{
bool SystemNetwork::HasRoute(Inventory::IPv4 address)
{
    constexpr std::int32_t AnyPort = 9;
    try
    {
        Socket probe(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp);
        probe.Connect(IPEndPoint(IPAddress::Parse(Inventory::Network::TextOf(address).c_str()), AnyPort));
        return true;
    }
    catch (const SocketException&)
    {
        return false;
    }
}
} // namespace Zent::Discovery::Programs
