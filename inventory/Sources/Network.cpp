#include "Inventory/Network.h"

#include <charconv>
#include <stdexcept>

namespace Zent::Discovery::Inventory
{
namespace
{
/// Takes a number of at most three digits from the start of the text.
std::optional<unsigned> TakeNumber(std::string_view& text, unsigned maximum)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto length = static_cast<std::size_t>(end - text.data());
    if (error != std::errc() || length > 3 || value > maximum)
    {
        return std::nullopt;
    }
    text.remove_prefix(length);
    return value;
}
} // namespace

Network Network::Parse(std::string_view text)
{
    const std::size_t slash = text.find('/');
    const std::optional<IPv4> address = ParseAddress(text.substr(0, slash));
    if (!address)
    {
        throw std::invalid_argument('"' + std::string(text) + "\" is no IPv4 address, such as 10.2.0.5 or 10.2.1.0/26");
    }
    std::string_view prefix = slash == std::string_view::npos ? "32" : text.substr(slash + 1);
    const std::optional<unsigned> length = TakeNumber(prefix, 32);
    if (!length || !prefix.empty())
    {
        throw std::invalid_argument('"' + std::string(text) + "\" has no prefix length from 0 to 32 behind its slash");
    }
    return {*address, static_cast<int>(*length)};
}

std::optional<IPv4> Network::ParseAddress(std::string_view text)
{
    IPv4 address = 0;
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0)
        {
            if (!text.starts_with('.'))
            {
                return std::nullopt;
            }
            text.remove_prefix(1);
        }
        const std::optional<unsigned> part = TakeNumber(text, 255);
        if (!part)
        {
            return std::nullopt;
        }
        address = address << 8 | *part;
    }
    return text.empty() ? std::optional(address) : std::nullopt;
}

std::string Network::TextOf(IPv4 address)
{
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 255) + "." +
           std::to_string(address >> 8 & 255) + "." + std::to_string(address & 255);
}

IPv4 Network::Lowest() const
{
    return PrefixLength == 0 ? 0 : Address & ~IPv4{0} << (32 - PrefixLength);
}

IPv4 Network::Highest() const
{
    return PrefixLength == 32 ? Address : Address | ~IPv4{0} >> PrefixLength;
}

bool Network::Contains(IPv4 address) const
{
    return address >= Lowest() && address <= Highest();
}

bool Network::HasHost(IPv4 address) const
{
    return Contains(address) && (PrefixLength > 30 || (address != Lowest() && address != Highest()));
}
} // namespace Zent::Discovery::Inventory
