#include "Text/TimeText.h"

#include <cstdio>

namespace Zent::Discovery::Console
{
std::string TimeText::Utc(std::chrono::system_clock::time_point time)
{
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time);
    const auto day = std::chrono::floor<std::chrono::days>(milliseconds);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(milliseconds - day);
    char text[48];
    const int length =
        std::snprintf(text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                      static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return {text, static_cast<std::size_t>(length)};
}
} // namespace Zent::Discovery::Console
