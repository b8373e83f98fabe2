#pragma once

#include "system/ValueType.h"

#include <compare>
#include <cstdint>

namespace Nfx::System
{
/// Up to four numeric components. Ordered component by component; an undefined one is lower than 0, so
/// 1.0 < 1.0.0 < 1.0.18 < 1.0.18.0.
class Version final : public ValueType
{
public:
    static constexpr std::int32_t Undefined = -1;

    /// 0.0, build and revision undefined.
    Version() noexcept = default;

    /// @throws ArgumentOutOfRangeException for a negative component (Undefined allowed for build and revision), or a
    /// revision without a build.
    Version(std::int32_t major, std::int32_t minor, std::int32_t build = Undefined, std::int32_t revision = Undefined);

    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// Decimal components joined by dots, without leading zeros and without undefined components.
    String ToString() const override;

    /// Reads two to four decimal numbers of 0 to 2147483647 joined by single dots, and nothing else.
    /// @throws Exception with ErrorCodes::InvalidFormat for any other text.
    static Version Parse(const String& text);

    friend bool operator==(const Version& left, const Version& right) noexcept { return (left <=> right) == 0; }

    friend std::strong_ordering operator<=>(const Version& left, const Version& right) noexcept;

private:
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t build = Undefined;
    std::int32_t revision = Undefined;
};
} // namespace Nfx::System
