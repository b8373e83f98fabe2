#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// An IPv4 address as a number, such as 0xC0A80114 for 192.168.1.20.
using IPv4 = std::uint32_t;

/// An IPv4 address together with the network around it; alone it is a network of one address.
struct Network
{
    IPv4 Address = 0;
    int PrefixLength = 32;

    /// Reads 192.168.1.20 or 192.168.1.20/24.
    /// @throws std::invalid_argument that names the text and what is wrong with it.
    static Network Parse(std::string_view text);

    /// Nothing when the text is no address.
    static std::optional<IPv4> ParseAddress(std::string_view text);

    static std::string TextOf(IPv4 address);

    IPv4 Lowest() const;
    IPv4 Highest() const;
    bool Contains(IPv4 address) const;

    /// False for the two addresses that stand for the network itself and for all in it.
    bool HasHost(IPv4 address) const;
};
} // namespace Zent::Discovery::Inventory
