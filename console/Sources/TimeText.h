#pragma once

#include <chrono>
#include <string>

namespace Zent::Discovery::Console
{
/// Times as texts. Main thread only.
class TimeText final
{
public:
    TimeText() = delete;

    /// UTC for scripts, such as 2026-03-09T14:07:09.250Z.
    static std::string Utc(std::chrono::system_clock::time_point time);

    /// How long ago that was, in one unit: 59 s, 59 min, 23 h, 400 d. A time to come is 0 s ago.
    static std::string Age(std::chrono::system_clock::duration age);
};
} // namespace Zent::Discovery::Console
