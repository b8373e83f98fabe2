#include "Os/Posix/WaitablePosix.h"

#include "Os/Posix/InterruptionPosix.h"

namespace Nfx::Os
{
namespace
{
// On the clock of ConditionPosix.
timespec DeadlineAfter(std::int32_t milliseconds)
{
    constexpr long nanosecondsPerMillisecond = 1'000'000;
    constexpr long nanosecondsPerSecond = 1'000'000'000;

    timespec moment{};
    clock_gettime(CLOCK_MONOTONIC, &moment);
    moment.tv_sec += milliseconds / 1000;
    moment.tv_nsec += (milliseconds % 1000) * nanosecondsPerMillisecond;
    if (moment.tv_nsec >= nanosecondsPerSecond)
    {
        moment.tv_nsec -= nanosecondsPerSecond;
        ++moment.tv_sec;
    }
    return moment;
}
} // namespace

bool WaitablePosix::Wait(std::int32_t timeout)
{
    if (timeout < -1)
    {
        return false;
    }
    {
        const ConditionPosix::Guard lock(condition);
        if (TryTake())
        {
            return true;
        }
    }
    return timeout != 0 && TakeOrSleep(timeout);
}

bool WaitablePosix::TakeOrSleep(std::int32_t timeout)
{
    const timespec deadline = DeadlineAfter(timeout);
    const InterruptionPosix::Scope interruption(condition);
    const ConditionPosix::Guard lock(condition);
    const std::uint64_t releasesBefore = releases;
    while (!TryTake())
    {
        if (releases != releasesBefore)
        {
            return true;
        }
        if (interruption.IsRequested())
        {
            return false;
        }
        if (timeout < 0)
        {
            condition.Sleep();
        }
        else if (!condition.SleepUntil(deadline))
        {
            return TryTake() || releases != releasesBefore;
        }
    }
    return true;
}

void WaitablePosix::ReleaseSleepers()
{
    ++releases;
    condition.WakeAll();
}
} // namespace Nfx::Os
