#pragma once

#include "system/Net/AddressFamily.h"

#include <cstdint>

namespace Nfx::System::Net
{
/// An IPv4 end point in the bytes that the platforms' socket calls take and return: the family in the byte order of
/// the machine, the port and the address in network order, eight bytes of filler. Not locked.
class SocketAddress final : public Object
{
public:
    /// Unspecified family, port 0, address 0.0.0.0; room for an end point that a socket call fills in.
    SocketAddress() noexcept = default;

    /// The low 16 bits of the port count; the first octet of the address is its least significant byte.
    SocketAddress(const AddressFamily& family, std::int32_t port, std::uint32_t address) noexcept;

    AddressFamily Family() const noexcept;
    std::int32_t Port() const noexcept;
    std::uint32_t Address() const noexcept;

    /// In bytes.
    static constexpr std::int32_t Size() noexcept { return Capacity; }

    /// Size() bytes, aligned for the platform's own structure.
    std::uint8_t* Data() noexcept { return bytes; }

    const std::uint8_t* Data() const noexcept { return bytes; }

    /// True for another SocketAddress of the same bytes.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

private:
    static constexpr std::int32_t Capacity = 16;

    alignas(8) std::uint8_t bytes[Capacity] = {};
};
} // namespace Nfx::System::Net
