#include "Discovery/BroadcastProviderWin32.h"

#include "Discovery/Attempt.h"
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
using Nfx::System::Net::Sockets::Socket;

namespace
{
const char SourceName[] = "Sources/BroadcastProviderWin32";

/// Connected to the broadcast address the socket accepts nothing. Without that it would be the better match for unicast
/// answers to its address, and the server's main socket would never see them.
void LeaveAnswersToTheMainSocket(IDiscoverySocket& socket)
{
    socket.GetSocket()->Connect(IPEndPoint(IPAddress::Broadcast(), socket.GetRemotePort()));
}

/// Passes on what came between the socket's binding and its connecting: from here it goes to the main socket.
void PassOnStrays(IDiscoverySocket& socket, const IPAddress& address)
{
    const SmartPointer<Socket> platformSocket = socket.GetSocket();
    const IPEndPoint mainSocket(address, socket.GetLocalPort());
    std::vector<std::uint8_t> buffer;
    for (std::int32_t size = platformSocket->Available(); size > 0; size = platformSocket->Available())
    {
        buffer.resize(static_cast<std::size_t>(size));
        IPEndPoint sender(IPAddress::Broadcast(), 0);
        const Int32 count = platformSocket->ReceiveFrom(buffer.data(), size, sender);
        platformSocket->SendTo(buffer.data(), count, mainSocket);
    }
}
} // namespace

BroadcastProviderWin32::BroadcastProviderWin32(const SmartPointer<AddressList>& addresses)
    : log("BroadcastProviderWin32")
    , addresses(addresses)
{
    if (addresses.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
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
    SmartPointer<IDiscoverySocket> socket;
    const auto open = [&] {
        socket = SmartPointer<DiscoverySocketUdpClient>::Create(ports->ServerPort(), ports->ClientPort(), address);
        LeaveAnswersToTheMainSocket(*socket);
    };
    const bool isOpen = Attempt(open, [&](const Exception& exception) {
        log.Write("Exception caught while creating socket on address " + address.ToString() + " !", exception);
    });
    return isOpen ? socket : nullptr;
}

void BroadcastProviderWin32::SendFrom(const IPAddress& address, const std::uint8_t* bytes, Int32 count) const
{
    const SmartPointer<IDiscoverySocket> socket = OpenSocket(address);
    if (socket.IsNull())
    {
        return;
    }
    log.Write("Sending from " + address.ToString() + "...", LogStreamLevel::Debug);
    Attempt([&] { socket->Send(bytes, count, IPAddress::Broadcast()); },
            [&](const Exception& exception) {
                log.Write("Exception caught while sending message from address " + address.ToString() + " !",
                          exception);
            });
    log.Guard("Answer lost on the way to the main socket", [&] { PassOnStrays(*socket, address); });
}
} // namespace Zent::Discovery
