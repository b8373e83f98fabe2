#include "system/DateTime.h"

#include "Os/IDateTime.h"
#include "Os/IOs.h"
#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/String.h"

#include <cstdio>

namespace Nfx::System
{
DateTime DateTime::FromUtc(std::int64_t utcMicroseconds)
{
    constexpr std::int64_t MicrosecondsPerSecond = 1'000'000;
    const std::int64_t remainder = utcMicroseconds % MicrosecondsPerSecond;
    const std::int64_t microsecond = remainder < 0 ? remainder + MicrosecondsPerSecond : remainder;
    const Os::IDateTime::Calendar local =
        Os::Platform().DateTime().ToLocal((utcMicroseconds - microsecond) / MicrosecondsPerSecond);
    return {local.Year,
            local.Month,
            local.Day,
            local.Hour,
            local.Minute,
            local.Second,
            static_cast<std::int32_t>(microsecond / 1000)};
}

DateTime DateTime::Now()
{
    return FromUtc(Os::Platform().DateTime().UtcMicroseconds());
}

DateTime::DateTime(std::int32_t year,
                   std::int32_t month,
                   std::int32_t day,
                   std::int32_t hour,
                   std::int32_t minute,
                   std::int32_t second,
                   std::int32_t millisecond)
    : year(year)
    , month(month)
    , day(day)
    , hour(hour)
    , minute(minute)
    , second(second)
    , millisecond(millisecond)
{
}

Boolean DateTime::Equals(const Object* object) const
{
    const DateTime* other = dynamic_cast<const DateTime*>(object);
    return other != nullptr && other->year == year && other->month == month && other->day == day &&
           other->hour == hour && other->minute == minute && other->second == second &&
           other->millisecond == millisecond;
}

Int32 DateTime::GetHashCode() const
{
    return ToString().GetHashCode();
}

String DateTime::ToString() const
{
    char text[96];
    const int length = std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d.%03d", day, month, year, hour,
                                     minute, second, millisecond);
    return String(text, static_cast<std::size_t>(length));
}

String DateTime::ToShortString() const
{
    char text[96];
    const int length =
        std::snprintf(text, sizeof text, "%d/%02d/%04d %02d:%02d:%02d", day, month, year, hour, minute, second);
    return String(text, static_cast<std::size_t>(length));
}
} // namespace Nfx::System
