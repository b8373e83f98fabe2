#pragma once

#include "system/IComparable.h"
#include "system/SmartPointer.h"
#include "system/ValueType.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Zent::Discovery
{
/// The hardware address of a network interface.
class MACAddress final : public Nfx::System::ValueType, public Nfx::System::IComparable
{
public:
    static constexpr std::size_t Length = 6;

    /// 00:00:00:00:00:00.
    MACAddress() noexcept = default;

    explicit MACAddress(const std::array<std::uint8_t, Length>& bytes) noexcept
        : bytes(bytes)
    {
    }

    /// Reads six parts of one or two hexadecimal digits joined by ":".
    /// @throws Exception with ErrorCodes::InvalidFormat for any other text.
    static MACAddress Parse(const Nfx::System::String& text);

    /// Parse for text that is part of another.
    static MACAddress ParseText(std::string_view text);

    /// True for another MACAddress of the same bytes.
    Nfx::System::Boolean Equals(const Nfx::System::Object* object) const override;
    Nfx::System::Int32 GetHashCode() const override;

    /// Two uppercase hexadecimal digits for each byte, joined by ":".
    Nfx::System::String ToString() const override;

    /// The characters of ToString.
    std::array<char, 3 * Length - 1> ToText() const noexcept;

    /// Compares the texts.
    /// @throws ArgumentNullException when object is null; ArgumentException when it is no MACAddress.
    Nfx::System::Int32 CompareTo(const Nfx::System::Object* object) const override;

    virtual Nfx::System::SmartPointer<MACAddress> Clone() const;

    const std::array<std::uint8_t, Length>& Bytes() const noexcept { return bytes; }

    friend bool operator==(const MACAddress& left, const MACAddress& right) noexcept
    {
        return left.bytes == right.bytes;
    }

private:
    std::array<std::uint8_t, Length> bytes{};
};
} // namespace Zent::Discovery
