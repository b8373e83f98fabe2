#include "AddressPlan.h"

#include "system/ErrorCodes.h"
#include "system/Exception.h"
#include "system/Int32.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::String;
using Nfx::System::Net::IPAddress;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace Zent::Discovery::Simulator
{
namespace
{
const char SourceName[] = "simulator/Sources/AddressPlan";

std::uint32_t Reverse(std::uint32_t value)
{
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

/// The address as a number that counts on from one address to the next.
std::uint32_t NumberOf(const IPAddress& address)
{
    return Reverse(static_cast<std::uint32_t>(std::int64_t{address.Value()}));
}

IPAddress AddressOfNumber(std::uint32_t number)
{
    return IPAddress(std::int64_t{Reverse(number)});
}
} // namespace

AddressPlan::AddressPlan(const std::vector<std::string>& addresses, const std::string& network)
    : network(network)
{
    for (const std::string& address : addresses)
    {
        this->addresses.push_back(IPAddress::Parse(String(std::string_view(address))));
    }
    const std::size_t slash = std::min(network.find('/'), network.size());
    const std::string_view length = std::string_view(network).substr(std::min(slash + 1, network.size()));
    const std::int32_t prefix = Int32::Parse(String(length));
    if (prefix < 1 || prefix > 32)
    {
        throw Exception(ErrorCodes::InvalidFormat, SourceName, __LINE__);
    }
    first = NumberOf(IPAddress::Parse(String(std::string_view(network).substr(0, slash))));
    mask = 0xFFFFFFFFu << (32 - prefix);
}

IPAddress AddressPlan::AddressOf(std::size_t device) const
{
    if (device < addresses.size())
    {
        return addresses[device];
    }
    const std::uint64_t number = std::uint64_t{first} + device;
    if ((number & ~std::uint64_t{~mask}) != (first & mask))
    {
        const String last = AddressOfNumber(first | ~mask).ToString();
        throw std::runtime_error("the network \"" + network + "\" has no address for device " +
                                 std::to_string(device + 1) + ": its last one is " + std::string(last.View()));
    }
    return AddressOfNumber(static_cast<std::uint32_t>(number));
}

IPAddress AddressPlan::SubNetMask() const
{
    return AddressOfNumber(mask);
}
} // namespace Zent::Discovery::Simulator
