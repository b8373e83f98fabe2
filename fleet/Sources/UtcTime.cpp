#include "Fleet/UtcTime.h"

#include <charconv>
#include <cstdio>

using namespace std::chrono;

namespace Zent::Discovery::Fleet
{
namespace
{
// What the system's clock counts in nanoseconds ends in the year 2262.
constexpr year FirstYear{1970};
constexpr year LastYear{2261};

constexpr std::string_view Pattern = "0000-00-00T00:00:00.000Z";

bool FitsPattern(std::string_view text)
{
    for (std::size_t i = 0; i < Pattern.size(); ++i)
    {
        const bool fits = Pattern[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == Pattern[i];
        if (!fits)
        {
            return false;
        }
    }
    return true;
}
} // namespace

std::string UtcTime::ToText(WallTime time)
{
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss<milliseconds> clock(floor<milliseconds>(time - day));
    char text[64];
    const int length =
        std::snprintf(text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", int(date.year()),
                      unsigned(date.month()), unsigned(date.day()), int(clock.hours().count()),
                      int(clock.minutes().count()), int(clock.seconds().count()), int(clock.subseconds().count()));
    return {text, static_cast<std::size_t>(length)};
}

std::optional<WallTime> UtcTime::Parse(std::string_view text)
{
    if (text.size() != Pattern.size() || !FitsPattern(text))
    {
        return std::nullopt;
    }
    const auto number = [text](std::size_t position, std::size_t size) {
        int value = 0;
        std::from_chars(text.data() + position, text.data() + position + size, value);
        return value;
    };
    const year_month_day date{year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                              day(static_cast<unsigned>(number(8, 2)))};
    const hours hour{number(11, 2)};
    const minutes minute{number(14, 2)};
    const seconds second{number(17, 2)};
    if (!date.ok() || date.year() < FirstYear || date.year() > LastYear || hour >= days(1) || minute >= hours(1) ||
        second >= minutes(1))
    {
        return std::nullopt;
    }
    return sys_days(date) + hour + minute + second + milliseconds(number(20, 3));
}
} // namespace Zent::Discovery::Fleet
