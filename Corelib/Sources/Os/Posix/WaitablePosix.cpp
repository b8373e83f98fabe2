#include "Os/Posix/WaitablePosix.h"

#include "Os/Posix/DeadlinePosix.h"
#include "Os/Posix/InterruptionPosix.h"

namespace Nfx::Os
{
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
    const timespec deadline = DeadlineAfter(CLOCK_MONOTONIC, timeout);
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
