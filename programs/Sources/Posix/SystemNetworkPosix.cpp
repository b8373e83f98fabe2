#include "Programs/SystemNetwork.h"

#include <algorithm>
#include <arpa/inet.h>
#include <bit>
#include <cerrno>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Zent::Discovery::Programs
{
namespace
{
class Descriptor final
{
public:
    explicit Descriptor(int number)
        : number(number)
    {
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor()
    {
        if (number >= 0)
        {
            close(number);
        }
    }

    int Number() const { return number; }

private:
    const int number;
};

Inventory::IPv4 AddressOf(const sockaddr* address)
{
    return ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr);
}

void Add(std::vector<NetworkInterface>& interfaces, const ifaddrs& entry)
{
    auto known = std::ranges::find(interfaces, std::string(entry.ifa_name), &NetworkInterface::Name);
    if (known == interfaces.end())
    {
        const auto has = [&entry](unsigned flag) { return (entry.ifa_flags & flag) != 0; };
        interfaces.push_back({entry.ifa_name,
                              {},
                              has(IFF_UP) && has(IFF_RUNNING),
                              has(IFF_BROADCAST),
                              has(IFF_LOOPBACK),
                              has(IFF_POINTOPOINT)});
        known = interfaces.end() - 1;
    }
    if (entry.ifa_addr != nullptr && entry.ifa_addr->sa_family == AF_INET && entry.ifa_netmask != nullptr)
    {
        known->Addresses.push_back({AddressOf(entry.ifa_addr), std::popcount(AddressOf(entry.ifa_netmask))});
    }
}

/// Asks the kernel for its notifications.
class NetworkChangesPosix final : public NetworkChanges
{
public:
    NetworkChangesPosix()
    {
        sockaddr_nl address{};
        address.nl_family = AF_NETLINK;
        address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR;
        isTold = bind(news.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    }

    bool Wait(std::chrono::milliseconds time) override
    {
        pollfd events[] = {{stopped.Number(), POLLIN, 0}, {isTold ? news.Number() : -1, POLLIN, 0}};
        poll(events, std::size(events), static_cast<int>(time.count()));
        char buffer[8192];
        while (recv(news.Number(), buffer, sizeof(buffer), MSG_DONTWAIT) > 0)
        {
        }
        return events[0].revents == 0;
    }

    void Stop() override { eventfd_write(stopped.Number(), 1); }

private:
    const Descriptor stopped{eventfd(0, EFD_CLOEXEC)};
    const Descriptor news{socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)};
    bool isTold = false; // where it is not, waits last as long as they may
};
} // namespace

std::vector<NetworkInterface> SystemNetwork::Interfaces()
{
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
    {
        throw std::system_error(errno, std::generic_category(), "cannot list the network interfaces");
    }
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(list, &freeifaddrs);
    std::vector<NetworkInterface> interfaces;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next)
    {
        Add(interfaces, *entry);
    }
    return interfaces;
}

std::unique_ptr<NetworkChanges> NetworkChanges::Create()
{
    return std::make_unique<NetworkChangesPosix>();
}
} // namespace Zent::Discovery::Programs
