#pragma once

#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// Brings an address that the user wrote, and the library has accepted, into the form of the library's documents, so
/// that the two can be compared.
class AddressText final
{
public:
    AddressText() = delete;

    /// 0:1a:2B:3c:4d:5e and 00-1A-2B-3C-4D-5E, as Windows writes it, become 00:1A:2B:3C:4D:5E.
    static std::string MAC(std::string_view text);

    /// 192.168.001.020 becomes 192.168.1.20.
    static std::string IP(std::string_view text);
};
} // namespace Zent::Discovery::Inventory
