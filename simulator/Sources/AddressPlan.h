#pragma once

#include "system/Net/IPAddress.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Which device gets which address.
class AddressPlan final
{
public:
    /// The first devices get the addresses given; device i of the others gets the network's address plus i. network is
    /// such as 127.0.0.10/8.
    /// @throws Nfx::System::Exception with ErrorCodes::InvalidFormat for a malformed text.
    AddressPlan(const std::vector<std::string>& addresses, const std::string& network);

    /// @throws std::runtime_error when the network has no address for a device of that number.
    Nfx::System::Net::IPAddress AddressOf(std::size_t device) const;

    Nfx::System::Net::IPAddress SubNetMask() const;

private:
    std::vector<Nfx::System::Net::IPAddress> addresses;
    const std::string network;
    std::uint32_t first; // the most significant byte is the first octet
    std::uint32_t mask;
};
} // namespace Zent::Discovery::Simulator
