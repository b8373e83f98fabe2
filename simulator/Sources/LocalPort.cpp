#include "LocalPort.h"

#include "system/Net/Sockets/SocketException.h"
#include "system/SmartPointer.h"

#include <stdexcept>
#include <string>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using namespace Nfx::System::Net::Sockets;

namespace Zent::Discovery::Simulator
{
LocalPort::LocalPort(std::int32_t port, std::int32_t peerPort, bool sharesPort)
    : peerPort(peerPort)
    , socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp)
    , addressing(ILocalAddressing::Create(socket))
{
    static constexpr std::int32_t ReceiveMilliseconds = 200;
    static constexpr std::int32_t BufferBytes = 1024 * 1024;

    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, sharesPort);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::Broadcast, true);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveBuffer, BufferBytes);
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, ReceiveMilliseconds);
    socket.SetSocketOption(SocketOptionLevel::IP, SocketOptionName::PacketInformation, true);
    const SmartPointer<EndPoint> endPoint(new IPEndPoint(IPAddress::Any(), port));
    try
    {
        socket.Bind(endPoint);
    }
    catch (const SocketException& exception)
    {
        if (exception.GetSocketError() == SocketError::AddressAlreadyInUse)
        {
            throw std::runtime_error("port " + std::to_string(port) + " is in use by another program");
        }
        throw;
    }
}

std::optional<Request> LocalPort::Receive()
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

void LocalPort::Send(const String& text, const IPAddress& from, const IPAddress& target)
{
    addressing->Send(text.View(), from, IPEndPoint(target, peerPort));
}
} // namespace Zent::Discovery::Simulator
