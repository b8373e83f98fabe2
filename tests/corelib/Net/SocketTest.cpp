#include "system/Net/Sockets/Socket.h"

#include "corelib/Net/LoopbackSocket.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <vector>

namespace Nfx::System::Net::Sockets
{
namespace
{
void AllowSharing(Socket& socket)
{
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReuseAddress, true);
}

void AllowBroadcast(Socket& socket)
{
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::Broadcast, true);
}

TEST(SocketTest, DatagramArrivesWithItsSenderAndTheEmptyOneToo)
{
    const SmartPointer<Socket> receiver = OpenLoopback();
    for (const std::string_view text : {std::string_view("hello"), std::string_view(), std::string_view("\0x", 2)})
    {
        const SmartPointer<Socket> sender = OpenLoopback();
        EXPECT_EQ(SendText(*sender, text, LoopbackEnd(*receiver)), static_cast<std::int32_t>(text.size()));
        const Received received = ReceiveText(*receiver);
        EXPECT_EQ(received.Text.View(), text);
        EXPECT_EQ(received.Sender, sender->LocalEndPoint());
    }
}

TEST(SocketTest, OversizeDatagramIsLostAndAnExactOneFits)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    SendText(*socket, "123456789", LoopbackEnd(*socket));
    SendText(*socket, "12345678", LoopbackEnd(*socket));
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket, 8); }), SocketError::MessageSize);
    EXPECT_EQ(ReceiveText(*socket, 8).Text, "12345678");
}

TEST(SocketTest, SocketsShareAPortOnlyWhenBothAllowIt)
{
    const SmartPointer<Socket> first = OpenSocket();
    AllowSharing(*first);
    BindTo(*first, IPAddress::Any(), 0);
    const std::int32_t port = first->LocalEndPoint().Port();

    const SmartPointer<Socket> second = OpenSocket();
    AllowSharing(*second);
    BindTo(*second, Loopback(), port);
    EXPECT_EQ(second->LocalEndPoint(), IPEndPoint(Loopback(), port));

    const SmartPointer<Socket> third = OpenSocket();
    EXPECT_EQ(ErrorOf([&] { BindTo(*third, Loopback(), port); }), SocketError::AddressAlreadyInUse);
}

TEST(SocketTest, BroadcastNeedsTheOption)
{
    const SmartPointer<Socket> receiver = OpenSocket();
    BindTo(*receiver, IPAddress::Any(), 0);
    const IPEndPoint everybody(IPAddress::Broadcast(), receiver->LocalEndPoint().Port());

    const SmartPointer<Socket> sender = OpenLoopback();
    EXPECT_EQ(ErrorOf([&] { SendText(*sender, "forbidden", everybody); }), SocketError::AccessDenied);
    AllowBroadcast(*sender);
    SendText(*sender, "allowed", everybody);

    const Received received = ReceiveText(*receiver);
    EXPECT_EQ(received.Text, "allowed");
    EXPECT_EQ(received.Sender, sender->LocalEndPoint());
}

TEST(SocketTest, ConnectedSocketTakesNothingFromOthersThatShareItsPort)
{
    const SmartPointer<Socket> main = OpenSocket();
    AllowSharing(*main);
    BindTo(*main, IPAddress::Any(), 0);
    const SmartPointer<Socket> peer = OpenSocket();
    BindTo(*peer, IPAddress::Any(), 0);
    const IPEndPoint everybody(IPAddress::Broadcast(), peer->LocalEndPoint().Port());

    const SmartPointer<Socket> connected = OpenSocket();
    AllowSharing(*connected);
    AllowBroadcast(*connected);
    BindTo(*connected, Loopback(), main->LocalEndPoint().Port());
    connected->Connect(everybody);
    SendText(*connected, "question", everybody);

    const Received question = ReceiveText(*peer);
    EXPECT_EQ(question.Text, "question");
    SendText(*peer, "answer", question.Sender);
    EXPECT_EQ(ReceiveText(*main).Text, "answer");
}

TEST(SocketTest, FailuresCarryTheirReason)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    const IPEndPoint self = LoopbackEnd(*socket);
    const std::vector<std::uint8_t> oversize(65508);

    EXPECT_EQ(ErrorOf([&] { socket->SendTo(oversize.data(), 65508, self); }), SocketError::MessageSize);
    EXPECT_EQ(ErrorOf([&] { socket->SetSocketOption(SocketOptionLevel::Socket, 0x7777, 1); }),
              SocketError::ProtocolOption);
    EXPECT_EQ(ErrorOf([&] { Socket(AddressFamily::InterNetworkV6, SocketType::Dgram, ProtocolType::Udp); }),
              SocketError::AddressFamilyNotSupported);
    EXPECT_EQ(ErrorOf([&] { Socket(AddressFamily::InterNetwork, SocketType::Stream, ProtocolType::Tcp); }),
              SocketError::SocketNotSupported);
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, 1);
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::TimedOut);
}

TEST(SocketTest, BadArgumentsAreRefusedAndTheSocketGoesOn)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    IPEndPoint end = LoopbackEnd(*socket);
    std::uint8_t buffer[1] = {};

    EXPECT_ERROR(socket->Bind(nullptr), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(socket->SendTo(nullptr, 1, end), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(socket->SendTo(buffer, -1, end), ErrorCodes::ArgumentOutOfRange);
    EXPECT_ERROR(socket->ReceiveFrom(nullptr, 1, end), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(socket->ReceiveFrom(buffer, -1, end), ErrorCodes::ArgumentOutOfRange);
    EXPECT_ERROR(socket->Shutdown(3), ErrorCodes::ArgumentOutOfRange);

    EXPECT_EQ(socket->SendTo(nullptr, 0, end), 0);
    EXPECT_EQ(ReceiveText(*socket).Text, "");
}

TEST(SocketTest, ShutdownEndsItsDirectionAlone)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    const IPEndPoint self = LoopbackEnd(*socket);
    SendText(*socket, "sent in time", self);

    socket->Shutdown(SocketShutdown::Send);
    EXPECT_EQ(ErrorOf([&] { SendText(*socket, "late", self); }), SocketError::Shutdown);
    EXPECT_EQ(ReceiveText(*socket).Text, "sent in time");

    socket->Shutdown(SocketShutdown::Both);
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::Shutdown);
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::Shutdown);
    EXPECT_EQ(ErrorOf([&] { socket->Shutdown(SocketShutdown::Both); }), SocketError::Success);
}

TEST(SocketTest, ClosedSocketRefusesEverything)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    const IPEndPoint self = LoopbackEnd(*socket);
    EXPECT_FALSE(socket->IsClosed());
    socket->Close();
    socket->Close();
    EXPECT_TRUE(socket->IsClosed());

    EXPECT_ERROR(SendText(*socket, "late", self), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(ReceiveText(*socket), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(AllowBroadcast(*socket), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(BindTo(*socket, Loopback(), 0), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(socket->Connect(self), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(socket->LocalEndPoint(), ErrorCodes::ObjectClosed);
    EXPECT_ERROR(socket->Shutdown(SocketShutdown::Both), ErrorCodes::ObjectClosed);

    const SmartPointer<Socket> successor = OpenSocket();
    BindTo(*successor, Loopback(), self.Port());
}

} // namespace
} // namespace Nfx::System::Net::Sockets
