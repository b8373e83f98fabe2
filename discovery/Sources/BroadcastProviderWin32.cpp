#include "Discovery/BroadcastProviderWin32.h"

#include "Discovery/DiscoveryPorts.h"
#include "Discovery/DiscoverySocketUdpClient.h"
#include "system/Exceptions.h"

namespace Zent::Discovery
{
using Nfx::System::ArgumentNullException;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::SmartPointer;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;

BroadcastProviderWin32::BroadcastProviderWin32(const SmartPointer<AddressList>& addresses)
    : log("BroadcastProviderWin32")
    , addresses(addresses)
{
    if (addresses.IsNull())
    {
        throw ArgumentNullException("Sources/BroadcastProviderWin32", __LINE__);
    }
}

void BroadcastProviderWin32::Send(const std::uint8_t* bytes, Int32 count)
{
    for (const SmartPointer<IPAddress>& address : *addresses)
    {
        SendFrom(*address, bytes, count);
    }
}

SmartPointer<IDiscoverySocket> BroadcastProviderWin32::OpenSocket(const IPAddress& address) const
{
    const SmartPointer<DiscoveryPorts>& ports = DiscoveryPorts::GetInstance();
    try
    {
        return SmartPointer<IDiscoverySocket>(
            new DiscoverySocketUdpClient(ports->ServerPort(), ports->ClientPort(), address));
    }
    catch (const Exception& exception)
    {
        log.Write("Exception caught while creating socket on address " + address.ToString() + " !", exception);
        return nullptr;
    }
}

void BroadcastProviderWin32::SendFrom(const IPAddress& address, const std::uint8_t* bytes, Int32 count) const
{
    const SmartPointer<IDiscoverySocket> socket = OpenSocket(address);
    if (socket.IsNull())
    {
        return;
    }
    log.Write("Sending from " + address.ToString() + "...", LogStreamLevel::Debug);
    try
    {
        // While this socket is open it is the better match for unicast answers to its address. Connected to the
        // broadcast address it accepts none of them, so they all go to the server's main socket.
        socket->GetSocket()->Connect(IPEndPoint(IPAddress::Broadcast(), socket->GetRemotePort()));
        socket->Send(bytes, count, IPAddress::Broadcast());
    }
    catch (const Exception& exception)
    {
        log.Write("Exception caught while sending message from address " + address.ToString() + " !", exception);
    }
}
} // namespace Zent::Discovery
