#include "Discovery/DiscoverySocketUdpClient.h"

namespace Zent::Discovery
{
using Nfx::System::Array;
using Nfx::System::Boolean;
using Nfx::System::Int32;
using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketShutdown;
using Nfx::System::Net::Sockets::SocketType;
using Nfx::System::Net::Sockets::UdpClient;

namespace
{
constexpr std::int32_t ReceiveBufferSize = 65536;

SmartPointer<UdpClient> OpenClient(const IPAddress& localAddress, const Int32& localPort)
{
    const SmartPointer<Socket> socket(new Socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp));
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, Boolean(true));
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveBuffer, Int32(ReceiveBufferSize));
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::Broadcast, Boolean(true));
    socket->Bind(SmartPointer<EndPoint>(new IPEndPoint(localAddress, localPort)));
    SmartPointer<UdpClient> client(new UdpClient());
    client->SetClient(socket);
    return client;
}
} // namespace

DiscoverySocketUdpClient::DiscoverySocketUdpClient(const Int32& localPort, const Int32& remotePort)
    : DiscoverySocketUdpClient(localPort, remotePort, IPAddress::Any())
{
}

DiscoverySocketUdpClient::DiscoverySocketUdpClient(const Int32& localPort,
                                                   const Int32& remotePort,
                                                   const IPAddress& localAddress)
    : localPort(localPort)
    , remotePort(remotePort)
    , udpClient(OpenClient(localAddress, localPort))
{
}

SmartPointer<Socket> DiscoverySocketUdpClient::GetSocket()
{
    return udpClient->Client();
}

Int32 DiscoverySocketUdpClient::Receive(std::uint8_t* buffer, Int32 size, IPEndPoint& remoteEndPoint)
{
    return udpClient->Receive(buffer, size, remoteEndPoint);
}

Int32 DiscoverySocketUdpClient::Send(const std::uint8_t* bytes, Int32 count, const IPAddress& targetAddress)
{
    return udpClient->Send(bytes, count, IPEndPoint(targetAddress, remotePort));
}

Int32 DiscoverySocketUdpClient::Send(const Array<std::uint8_t>& bytes, const IPAddress& targetAddress)
{
    return udpClient->Send(bytes, IPEndPoint(targetAddress, remotePort));
}

Int32 DiscoverySocketUdpClient::Broadcast(const std::uint8_t* bytes, Int32 count)
{
    return Send(bytes, count, IPAddress::Broadcast());
}

Int32 DiscoverySocketUdpClient::Broadcast(const Array<std::uint8_t>& bytes)
{
    return Send(bytes, IPAddress::Broadcast());
}

void DiscoverySocketUdpClient::Shutdown()
{
    if (isShutDown)
    {
        return;
    }
    const SmartPointer<Socket> socket = udpClient->Client();
    if (!socket.IsNull())
    {
        socket->Shutdown(SocketShutdown::Both);
    }
    isShutDown = true;
}

Boolean DiscoverySocketUdpClient::IsShutDown()
{
    return isShutDown.load();
}

void DiscoverySocketUdpClient::Close()
{
    if (isClosed)
    {
        return;
    }
    udpClient->Close();
    isClosed = true;
}

Boolean DiscoverySocketUdpClient::HasShutDown()
{
    return IsShutDown();
}

Boolean DiscoverySocketUdpClient::IsClosed()
{
    return isClosed.load();
}

Int32 DiscoverySocketUdpClient::GetLocalPort()
{
    return localPort;
}

Int32 DiscoverySocketUdpClient::GetRemotePort()
{
    return remotePort;
}
} // namespace Zent::Discovery
