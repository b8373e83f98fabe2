#pragma once

#include "system/ValueType.h"

#include <cstdint>

namespace Nfx::System
{
/// A local date and time of day, to the millisecond.
class DateTime final : public ValueType
{
public:
    /// A moment in local time, by the time zone's rules for that moment.
    /// @param utcMicroseconds counted since 1970 began in Greenwich
    static DateTime FromUtc(std::int64_t utcMicroseconds);

    static DateTime Now();

    /// Takes the parts as they are.
    /// @param month 1 to 12
    /// @param day 1 to 31
    DateTime(std::int32_t year,
             std::int32_t month,
             std::int32_t day,
             std::int32_t hour,
             std::int32_t minute,
             std::int32_t second,
             std::int32_t millisecond);

    /// True for the same date and time of day.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// 23 characters, as in 05/03/2026 14:07:09.042.
    String ToString() const override;

    /// Without milliseconds and the day without a leading zero, as in 5/03/2026 14:07:09.
    String ToShortString() const;

private:
    std::int32_t year;
    std::int32_t month;
    std::int32_t day;
    std::int32_t hour;
    std::int32_t minute;
    std::int32_t second;
    std::int32_t millisecond;
};
} // namespace Nfx::System
