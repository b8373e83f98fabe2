#pragma once

#include "Os/Posix/ConditionPosix.h"

#include <cstdint>

namespace Nfx::Os
{
/// Something that threads wait for: it says when one of them may go on.
class WaitablePosix
{
public:
    virtual ~WaitablePosix() = default;
    WaitablePosix(const WaitablePosix&) = delete;
    WaitablePosix& operator=(const WaitablePosix&) = delete;

    /// True when TryTake was within the timeout: milliseconds, -1 waits without limit, below that it is not even tried.
    /// False as well when the thread is interrupted while it would have to sleep.
    bool Wait(std::int32_t timeout);

protected:
    WaitablePosix() = default;

    /// Whether the calling thread may go on; if so, takes what it waited for. Wake somebody when this may have become
    /// true: a sleeper who is woken asks before he looks at anything else, so that no wake-up is lost.
    virtual bool TryTake() NFX_REQUIRES(condition) = 0;

    /// Lets everybody go on who sleeps now, whatever TryTake says by the time they wake.
    void ReleaseSleepers() NFX_REQUIRES(condition);

    ConditionPosix condition;

private:
    bool TakeOrSleep(std::int32_t timeout);

    std::uint64_t releases NFX_GUARDED_BY(condition) = 0;
};
} // namespace Nfx::Os
