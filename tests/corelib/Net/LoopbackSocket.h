#pragma once

#include "system/Net/Sockets/Socket.h"
#include "system/Net/Sockets/SocketException.h"

#include <cstdint>
#include <string_view>

namespace Nfx::System::Net::Sockets
{
inline constexpr std::int32_t ReceiveDeadline = 20000; // milliseconds; a receive that lasts longer is a failure

inline IPAddress Loopback()
{
    return IPAddress::Parse("127.0.0.1");
}

/// A datagram socket that is not bound; its receives fail at the deadline instead of hanging the test.
inline SmartPointer<Socket> OpenSocket()
{
    SmartPointer<Socket> socket(new Socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp));
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, ReceiveDeadline);
    return socket;
}

inline void BindTo(Socket& socket, const IPAddress& address, std::int32_t port)
{
    socket.Bind(SmartPointer<EndPoint>(new IPEndPoint(address, port)));
}

/// A datagram socket on a free port of 127.0.0.1.
inline SmartPointer<Socket> OpenLoopback()
{
    SmartPointer<Socket> socket = OpenSocket();
    BindTo(*socket, Loopback(), 0);
    return socket;
}

inline IPEndPoint LoopbackEnd(Socket& socket)
{
    return IPEndPoint(Loopback(), socket.LocalEndPoint().Port());
}

inline std::int32_t SendText(Socket& socket, std::string_view text, const IPEndPoint& target)
{
    return socket.SendTo(reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<std::int32_t>(text.size()),
                         target);
}

struct Received
{
    String Text;
    IPEndPoint Sender;
};

inline Received ReceiveText(Socket& socket, std::int32_t size = 1024)
{
    std::uint8_t buffer[1024];
    IPEndPoint sender(IPAddress::Broadcast(), 0);
    const std::int32_t count = socket.ReceiveFrom(buffer, size, sender);
    return {String(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count)), sender};
}

/// The socket error of an action that fails, Success of one that does not.
template <class TAction>
SocketError ErrorOf(TAction&& action)
{
    try
    {
        action();
        return SocketError::Success;
    }
    catch (const SocketException& exception)
    {
        return exception.GetSocketError();
    }
}
} // namespace Nfx::System::Net::Sockets
