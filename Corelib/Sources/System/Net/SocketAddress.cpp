#include "system/Net/SocketAddress.h"

#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/String.h"

#include <algorithm>
#include <cstring>

namespace Nfx::System::Net
{
namespace
{
constexpr std::size_t PortOffset = 2;
constexpr std::size_t AddressOffset = 4;
constexpr std::size_t AddressSize = 4;
} // namespace

SocketAddress::SocketAddress(const AddressFamily& family, std::int32_t port, std::uint32_t address) noexcept
{
    const std::uint16_t familyNumber = static_cast<std::uint16_t>(std::int32_t{family});
    std::memcpy(bytes, &familyNumber, sizeof familyNumber);
    bytes[PortOffset] = static_cast<std::uint8_t>(port >> 8);
    bytes[PortOffset + 1] = static_cast<std::uint8_t>(port);
    for (std::size_t octet = 0; octet < AddressSize; ++octet)
    {
        bytes[AddressOffset + octet] = static_cast<std::uint8_t>(address >> (8 * octet));
    }
}

AddressFamily SocketAddress::Family() const noexcept
{
    std::uint16_t familyNumber = 0;
    std::memcpy(&familyNumber, bytes, sizeof familyNumber);
    return std::int32_t{familyNumber};
}

std::int32_t SocketAddress::Port() const noexcept
{
    return (bytes[PortOffset] << 8) | bytes[PortOffset + 1];
}

std::uint32_t SocketAddress::Address() const noexcept
{
    std::uint32_t address = 0;
    for (std::size_t octet = 0; octet < AddressSize; ++octet)
    {
        address |= std::uint32_t{bytes[AddressOffset + octet]} << (8 * octet);
    }
    return address;
}

Boolean SocketAddress::Equals(const Object* object) const
{
    const SocketAddress* other = dynamic_cast<const SocketAddress*>(object);
    return other != nullptr && std::ranges::equal(other->bytes, bytes);
}

Int32 SocketAddress::GetHashCode() const
{
    return static_cast<std::int32_t>(Address()) ^ Port();
}
} // namespace Nfx::System::Net
