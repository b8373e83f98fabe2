#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/socket.h>

namespace Zent::Discovery::Page
{
/// An IPv4 or IPv6 address with a port, as the system's sockets have it.
class InternetAddress final
{
public:
    /// Nothing when the text is no address.
    static std::optional<InternetAddress> Parse(const std::string& text, std::uint16_t port);

    InternetAddress() = default; // for the system to write to
    explicit InternetAddress(const sockaddr& address);

    /// That a socket of this machine has.
    static InternetAddress LocalOf(int socket);

    bool IsLoopback() const;

    /// Without the port; of an IPv4 address that stands in an IPv6 one that address.
    std::string Text() const;

    std::uint16_t Port() const;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }

    sockaddr* Get() { return reinterpret_cast<sockaddr*>(&storage); }

    /// In bytes.
    socklen_t Size() const;

private:
    sockaddr_storage storage = {};
};
} // namespace Zent::Discovery::Page
