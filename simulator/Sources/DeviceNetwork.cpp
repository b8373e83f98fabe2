#include "DeviceNetwork.h"

#include "Discovery/DiscoveryPorts.h"
#include "system/Net/Sockets/SocketException.h"
#include "system/SmartPointer.h"

#include <stdexcept>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using namespace Nfx::System::Net::Sockets;

namespace Zent::Discovery::Simulator
{
DeviceNetwork::DeviceNetwork(bool sharesPort)
    : socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp)
    , addressing(ILocalAddressing::Create(socket))
{
    static constexpr std::int32_t ReceiveMilliseconds = 200;
    static constexpr std::int32_t BufferBytes = 1024 * 1024;

    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, sharesPort);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::Broadcast, true);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveBuffer, BufferBytes);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, ReceiveMilliseconds);
    socket.SetSocketOption(SocketOptionLevel::IP, SocketOptionName::PacketInformation, true);
    const SmartPointer<EndPoint> endPoint(
        new IPEndPoint(IPAddress::Any(), DiscoveryPorts::GetInstance()->ClientPort()));
    try
    {
        socket.Bind(endPoint);
    }
    catch (const SocketException& exception)
    {
        if (exception.GetSocketError() == SocketError::AddressAlreadyInUse)
        {
            throw std::runtime_error("port 12000 is in use by another program");
        }
        throw;
    }
}

std::optional<Request> DeviceNetwork::Receive()
{
    Request request;
    const std::optional<std::size_t> size = addressing->Receive(buffer, request.Sender, request.Destination);
    if (!size)
    {
        return std::nullopt;
    }
    request.Text = String(buffer.data(), *size);
    return request;
}

void DeviceNetwork::Send(const String& text, const IPAddress& from, const IPAddress& target)
{
    addressing->Send(text.View(), from, IPEndPoint(target, DiscoveryPorts::GetInstance()->ServerPort()));
}
} // namespace Zent::Discovery::Simulator
