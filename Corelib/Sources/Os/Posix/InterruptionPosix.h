#pragma once

#include "Os/Posix/ConditionPosix.h"

#include <atomic>

namespace Nfx::Os
{
/// Lets other threads end the wait of one thread. Each thread that is created here has one.
class InterruptionPosix final
{
public:
    /// requested is where the request is kept until the thread takes it back.
    explicit InterruptionPosix(std::atomic<bool>& requested) noexcept;
    InterruptionPosix(const InterruptionPosix&) = delete;
    InterruptionPosix& operator=(const InterruptionPosix&) = delete;

    /// The interruption of the calling thread; null in threads that were not created here.
    static InterruptionPosix* Current() noexcept;
    static void SetCurrent(InterruptionPosix* interruption) noexcept;

    /// Any thread, holding no condition.
    void Request();

    /// Says for a scope on what the calling thread is about to sleep. To be built before its lock is taken.
    class Scope final
    {
    public:
        explicit Scope(ConditionPosix& condition);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

        bool IsRequested() const noexcept;

    private:
        InterruptionPosix* const interruption;
    };

private:
    void SleepOn(ConditionPosix* condition);

    std::atomic<bool>& requested;                             // set by Request, taken back by the thread
    ConditionPosix guard;                                     // taken before the condition that is slept on
    ConditionPosix* sleepsOn NFX_GUARDED_BY(guard) = nullptr; // stays in place for whoever holds guard
};
} // namespace Nfx::Os
