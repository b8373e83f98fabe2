#include "Programs/TimeText.h"

#include <cstdio>

namespace Zent::Discovery::Programs
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

std::optional<std::chrono::system_clock::time_point> TimeText::ParseUtc(const std::string& text)
{
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int milliseconds = 0;
    if (std::sscanf(text.c_str(), "%4d-%2u-%2uT%2d:%2d:%2d.%3dZ", &year, &month, &day, &hours, &minutes, &seconds,
                    &milliseconds) != 7)
    {
        return std::nullopt;
    }
    const std::chrono::sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    const std::chrono::system_clock::time_point time = date + std::chrono::hours(hours) +
                                                       std::chrono::minutes(minutes) + std::chrono::seconds(seconds) +
                                                       std::chrono::milliseconds(milliseconds);
    return Utc(time) == text ? std::optional(time) : std::nullopt;
}
} // namespace Zent::Discovery::Programs
