#include "Os/Posix/DateTimePosix.h"

#include <ctime>

namespace Nfx::Os
{
namespace
{
std::int64_t MicrosecondsOf(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}
} // namespace

std::int64_t DateTimePosix::UtcMicroseconds()
{
    return MicrosecondsOf(CLOCK_REALTIME);
}

std::int64_t DateTimePosix::MonotonicMicroseconds()
{
    return MicrosecondsOf(CLOCK_MONOTONIC);
}

IDateTime::Calendar DateTimePosix::ToLocal(std::int64_t utcSeconds)
{
    const std::time_t seconds = static_cast<std::time_t>(utcSeconds);
    std::tm local{};
    localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}
} // namespace Nfx::Os
