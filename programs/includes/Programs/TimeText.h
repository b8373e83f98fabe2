#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace Zent::Discovery::Programs
{
/// Times as texts. Any thread.
class TimeText final
{
public:
    TimeText() = delete;

    /// UTC for scripts, such as 2026-03-09T14:07:09.250Z.
    static std::string Utc(std::chrono::system_clock::time_point time);

    /// The time that Utc has written; nothing for any other text.
    static std::optional<std::chrono::system_clock::time_point> ParseUtc(const std::string& text);
};
} // namespace Zent::Discovery::Programs
