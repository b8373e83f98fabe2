#include "ILocalAddressing.h"
#include "system/Net/Sockets/Socket.h"
#include "system/SmartPointer.h"

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <mswsock.h>
// clang-format on

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <system_error>

using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketType;

namespace Zent::Discovery::Simulator
{
namespace
{
/// Room for the one control message that is used, aligned as its header.
union Control {
    WSACMSGHDR Header;
    std::array<char, WSA_CMSG_SPACE(sizeof(in_pktinfo))> Bytes;
};

IPAddress AddressOf(const in_addr& address)
{
    return IPAddress(std::int64_t{address.s_addr});
}

IPAddress DestinationOf(WSAMSG& message)
{
    for (WSACMSGHDR* header = WSA_CMSG_FIRSTHDR(&message); header != nullptr;
         header = WSA_CMSG_NXTHDR(&message, header))
    {
        if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_PKTINFO)
        {
            in_pktinfo information{};
            std::memcpy(&information, WSA_CMSG_DATA(header), sizeof(information));
            return AddressOf(information.ipi_addr);
        }
    }
    return IPAddress::Any();
}

/// Where to bind in order to send from a local address. Under Wine a socket bound to another loopback address than
/// 127.0.0.1 is bound to all addresses, and what it broadcasts leaves the machine.
IPAddress BindingAddress(const IPAddress& from)
{
    const bool isLoopback = (std::int64_t{from.Value()} & 0xFF) == 127;
    return isLoopback ? IPAddress(std::int64_t{0x0100007F}) : from;
}

class LocalAddressingW32 final : public ILocalAddressing
{
public:
    explicit LocalAddressingW32(const Socket& socket)
        : handle(static_cast<SOCKET>(std::intptr_t{socket.Handle()}))
    {
        GUID function = WSAID_WSARECVMSG;
        DWORD size = 0;
        if (WSAIoctl(handle, SIO_GET_EXTENSION_FUNCTION_POINTER, &function, sizeof(function), &receiveMessage,
                     sizeof(receiveMessage), &size, nullptr, nullptr) != 0)
        {
            Fail("cannot receive destinations");
        }
    }

    std::optional<std::size_t> Receive(std::span<char> buffer, IPAddress& sender, IPAddress& destination) override
    {
        sockaddr_in address{};
        WSABUF part{static_cast<ULONG>(buffer.size()), buffer.data()};
        Control control{};
        WSAMSG message{};
        message.name = reinterpret_cast<sockaddr*>(&address);
        message.namelen = sizeof(address);
        message.lpBuffers = &part;
        message.dwBufferCount = 1;
        message.Control = {sizeof(control), control.Bytes.data()};
        DWORD size = 0;
        if (receiveMessage(handle, &message, &size, nullptr, nullptr) != 0)
        {
            const int error = WSAGetLastError();
            if (error == WSAETIMEDOUT || error == WSAECONNRESET || error == WSAEMSGSIZE)
            {
                return std::nullopt;
            }
            Fail("cannot receive");
        }
        sender = AddressOf(address.sin_addr);
        destination = DestinationOf(message);
        return size;
    }

    void Send(std::string_view bytes, const IPAddress& from, const IPEndPoint& target) override
    {
        const IPAddress address = BindingAddress(from);
        SmartPointer<Socket>& sender = senders[std::int64_t{address.Value()}];
        if (sender == nullptr)
        {
            sender = OpenSender(address);
        }
        sender->SendTo(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                       target);
    }

private:
    [[noreturn]] static void Fail(const char* operation)
    {
        throw std::system_error(WSAGetLastError(), std::system_category(), operation);
    }

    static SmartPointer<Socket> OpenSender(const IPAddress& address)
    {
        SmartPointer<Socket> sender(new Socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp));
        sender->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::Broadcast, true);
        sender->Bind(SmartPointer<EndPoint>(new IPEndPoint(address, 0)));
        return sender;
    }

    const SOCKET handle; // the receiving socket's
    LPFN_WSARECVMSG receiveMessage = nullptr;
    std::map<std::int64_t, SmartPointer<Socket>> senders; // by the address that they are bound to; the sender's thread
};
} // namespace

std::unique_ptr<ILocalAddressing> ILocalAddressing::Create(Socket& socket)
{
    return std::make_unique<LocalAddressingW32>(socket);
}
} // namespace Zent::Discovery::Simulator
