#include "ILocalAddressing.h"
#include "system/Net/Sockets/Socket.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>

using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::Socket;

namespace Zent::Discovery::Simulator
{
namespace
{
/// Room for the one control message that is used, aligned as its header.
union Control {
    cmsghdr Header;
    std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> Bytes;
};

IPAddress AddressOf(const in_addr& address)
{
    return IPAddress(std::int64_t{address.s_addr});
}

in_addr PlatformAddress(const IPAddress& address)
{
    return {static_cast<in_addr_t>(std::int64_t{address.Value()})};
}

/// The message of these parts, which must outlive it.
msghdr MessageOf(sockaddr_in& address, iovec& part, Control& control)
{
    msghdr message{};
    message.msg_name = &address;
    message.msg_namelen = sizeof(address);
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = &control;
    message.msg_controllen = sizeof(control);
    return message;
}

IPAddress DestinationOf(msghdr& message)
{
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr; header = CMSG_NXTHDR(&message, header))
    {
        if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_PKTINFO)
        {
            in_pktinfo information{};
            std::memcpy(&information, CMSG_DATA(header), sizeof(information));
            return AddressOf(information.ipi_addr);
        }
    }
    return IPAddress::Any();
}

class LocalAddressingPosix final : public ILocalAddressing
{
public:
    explicit LocalAddressingPosix(const Socket& socket)
        : descriptor(static_cast<int>(std::intptr_t{socket.Handle()}))
    {
    }

    std::optional<std::size_t> Receive(std::span<char> buffer, IPAddress& sender, IPAddress& destination) override
    {
        sockaddr_in address{};
        iovec part{buffer.data(), buffer.size()};
        Control control{};
        msghdr message = MessageOf(address, part, control);
        const ssize_t size = recvmsg(descriptor, &message, 0);
        if (size < 0)
        {
            if (errno == EAGAIN || errno == EINTR || errno == ECONNREFUSED) // the last: an answer found no server
            {
                return std::nullopt;
            }
            throw std::system_error(errno, std::generic_category(), "cannot receive");
        }
        sender = AddressOf(address.sin_addr);
        destination = DestinationOf(message);
        return static_cast<std::size_t>(size);
    }

    void Send(std::string_view bytes, const IPAddress& from, const IPEndPoint& target) override
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(std::int32_t{target.Port()}));
        address.sin_addr = PlatformAddress(target.Address());
        iovec part{const_cast<char*>(bytes.data()), bytes.size()}; // the type serves receiving, too
        Control control{};
        msghdr message = MessageOf(address, part, control);

        in_pktinfo information{};
        information.ipi_spec_dst = PlatformAddress(from); // decides the interface of a broadcast, too
        cmsghdr& header = *CMSG_FIRSTHDR(&message);
        header.cmsg_level = IPPROTO_IP;
        header.cmsg_type = IP_PKTINFO;
        header.cmsg_len = CMSG_LEN(sizeof(information));
        std::memcpy(CMSG_DATA(&header), &information, sizeof(information));
        if (sendmsg(descriptor, &message, MSG_NOSIGNAL) < 0)
        {
            throw std::system_error(errno, std::generic_category(), "cannot send");
        }
    }

private:
    const int descriptor; // the socket's
};
} // namespace

std::unique_ptr<ILocalAddressing> ILocalAddressing::Create(Socket& socket)
{
    return std::make_unique<LocalAddressingPosix>(socket);
}
} // namespace Zent::Discovery::Simulator
