#pragma once

#include "system/Int64.h"
#include "system/Net/AddressFamily.h"

#include <cstdint>

namespace Nfx::System::Net
{
/// An IPv4 address. Copied by value; constant once made, apart from assignment, which is not locked.
class IPAddress final : public Object
{
public:
    /// 0.0.0.0.
    IPAddress() noexcept = default;

    /// The low 32 bits are the address, its first octet in the least significant byte; the others are dropped.
    IPAddress(std::int64_t value) noexcept;

    /// 0.0.0.0 as the address to bind to: any address of this machine.
    static const IPAddress& Any();

    /// 255.255.255.255.
    static const IPAddress& Broadcast();

    /// 0.0.0.0 where no address is meant.
    static const IPAddress& Empty();

    /// Reads four numbers of 0 to 255 joined by dots, each of one to three decimal digits, leading zeros included.
    /// @throws Exception with ErrorCodes::InvalidFormat for any other text.
    static IPAddress Parse(const String& text);

    /// 0 to 0xFFFFFFFF, the first octet in the least significant byte.
    Int64 Value() const noexcept { return std::int64_t{address}; }

    /// InterNetwork, always.
    AddressFamily Family() const noexcept { return AddressFamily::InterNetwork; }

    /// True for another IPAddress of the same value.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// Four decimal numbers joined by dots.
    String ToString() const override;

    friend bool operator==(const IPAddress& left, const IPAddress& right) noexcept
    {
        return left.address == right.address;
    }

private:
    std::uint32_t address = 0;
};
} // namespace Nfx::System::Net
