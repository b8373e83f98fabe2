#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// Of the wall: what is written must be understood by other machines. Where time passes, no clock is read here.
using WallTime = std::chrono::system_clock::time_point;

/// Moments as documents have them: 2026-03-01T12:30:00.250Z.
class UtcTime final
{
public:
    UtcTime() = delete;

    /// Without what is less than a millisecond.
    static std::string ToText(WallTime time);

    /// Nothing for texts of any other form and for moments that do not exist.
    static std::optional<WallTime> Parse(std::string_view text);
};
} // namespace Zent::Discovery::Fleet
