#include "InternetAddress.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <netinet/in.h>

namespace Zent::Discovery::Page
{
namespace
{
const sockaddr_in& V4(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in&>(storage);
}

const sockaddr_in6& V6(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in6&>(storage);
}
} // namespace

std::optional<InternetAddress> InternetAddress::Parse(const std::string& text, std::uint16_t port)
{
    InternetAddress address;
    auto& v4 = reinterpret_cast<sockaddr_in&>(address.storage);
    auto& v6 = reinterpret_cast<sockaddr_in6&>(address.storage);
    if (inet_pton(AF_INET, text.c_str(), &v4.sin_addr) == 1)
    {
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        return address;
    }
    if (inet_pton(AF_INET6, text.c_str(), &v6.sin6_addr) == 1)
    {
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        return address;
    }
    return std::nullopt;
}

InternetAddress::InternetAddress(const sockaddr& address)
{
    storage.ss_family = address.sa_family;
    std::memcpy(&storage, &address, Size());
}

InternetAddress InternetAddress::LocalOf(int socket)
{
    InternetAddress address;
    socklen_t size = sizeof(address.storage);
    getsockname(socket, address.Get(), &size);
    return address;
}

bool InternetAddress::IsLoopback() const
{
    return Text().starts_with("127.") || Text() == "::1";
}

std::string InternetAddress::Text() const
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (storage.ss_family == AF_INET)
    {
        inet_ntop(AF_INET, &V4(storage).sin_addr, text.data(), text.size());
    }
    else if (storage.ss_family == AF_INET6)
    {
        const in6_addr& address = V6(storage).sin6_addr;
        const bool isV4 = IN6_IS_ADDR_V4MAPPED(&address) != 0;
        inet_ntop(isV4 ? AF_INET : AF_INET6, &address.s6_addr[isV4 ? 12 : 0], text.data(), text.size());
    }
    return text.data();
}

std::uint16_t InternetAddress::Port() const
{
    return ntohs(storage.ss_family == AF_INET6 ? V6(storage).sin6_port : V4(storage).sin_port);
}

socklen_t InternetAddress::Size() const
{
    return storage.ss_family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
}
} // namespace Zent::Discovery::Page
