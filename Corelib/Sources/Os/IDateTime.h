#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// The clocks of the platform.
class IDateTime
{
public:
    IDateTime(const IDateTime&) = delete;
    IDateTime& operator=(const IDateTime&) = delete;

    struct Calendar
    {
        std::int32_t Year;
        std::int32_t Month; // 1 to 12
        std::int32_t Day;   // 1 to 31
        std::int32_t Hour;
        std::int32_t Minute;
        std::int32_t Second;
    };

    /// Microseconds since 1970 began in Greenwich; follows every change of the system's clock.
    virtual std::int64_t UtcMicroseconds() = 0;

    /// Microseconds since some moment before; never goes back and knows nothing of the system's clock.
    virtual std::int64_t MonotonicMicroseconds() = 0;

    /// The local time, by the time zone's rules for that moment, of seconds since 1970 began in Greenwich.
    virtual Calendar ToLocal(std::int64_t utcSeconds) = 0;

protected:
    IDateTime() = default;
    ~IDateTime() = default;
};
} // namespace Nfx::Os
