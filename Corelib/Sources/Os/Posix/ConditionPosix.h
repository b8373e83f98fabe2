#pragma once

#include "system/Threading/ThreadAnnotations.h"

#include <ctime>
#include <pthread.h>

namespace Nfx::Os
{
/// A lock, and a condition for those who wait for a change of what it guards. A thread is never suspended while it
/// holds one, so that others can go on.
class NFX_CAPABILITY("condition") ConditionPosix final
{
public:
    ConditionPosix();
    ~ConditionPosix();
    ConditionPosix(const ConditionPosix&) = delete;
    ConditionPosix& operator=(const ConditionPosix&) = delete;

    /// Holds the lock to the end of the scope.
    class NFX_SCOPED_CAPABILITY Guard final
    {
    public:
        explicit Guard(ConditionPosix& condition) NFX_ACQUIRE(condition)
            : condition(condition)
        {
            condition.Enter();
        }

        ~Guard() NFX_RELEASE() { condition.Exit(wakesOne); }

        /// Wakes one sleeper at the end of the scope, who then finds the lock free instead of waiting for it at once.
        /// Somebody else must keep the condition alive until then: it is used once the lock is free.
        void WakeOneAfterwards() { wakesOne = true; }

        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        ConditionPosix& condition;
        bool wakesOne = false;
    };

    /// Lets go of the lock, sleeps, and takes it again; may wake without a reason.
    void Sleep() NFX_REQUIRES(this);

    /// The same until a moment of the monotonic clock; false once it has come.
    bool SleepUntil(const timespec& deadline) NFX_REQUIRES(this);

    void WakeOne() NFX_REQUIRES(this);
    void WakeAll() NFX_REQUIRES(this);

private:
    void Enter() NFX_ACQUIRE();
    void Exit(bool wakesOne) NFX_RELEASE();

    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition{};
};
} // namespace Nfx::Os
