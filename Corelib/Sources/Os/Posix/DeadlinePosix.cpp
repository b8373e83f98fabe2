#include "Os/Posix/DeadlinePosix.h"

namespace Nfx::Os
{
timespec DeadlineAfter(clockid_t clock, std::int32_t milliseconds)
{
    constexpr long nanosecondsPerMillisecond = 1'000'000;
    constexpr long nanosecondsPerSecond = 1'000'000'000;

    timespec moment{};
    clock_gettime(clock, &moment);
    moment.tv_sec += milliseconds / 1000;
    moment.tv_nsec += (milliseconds % 1000) * nanosecondsPerMillisecond;
    if (moment.tv_nsec >= nanosecondsPerSecond)
    {
        moment.tv_nsec -= nanosecondsPerSecond;
        ++moment.tv_sec;
    }
    return moment;
}
} // namespace Nfx::Os
