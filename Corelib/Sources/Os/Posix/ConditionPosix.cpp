#include "Os/Posix/ConditionPosix.h"

#include "Os/Posix/SuspensionPosix.h"

namespace Nfx::Os
{
ConditionPosix::ConditionPosix()
{
    // A wall clock that is set must not stretch or cut anybody's timeout.
    pthread_condattr_t attributes{};
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

ConditionPosix::~ConditionPosix()
{
    pthread_cond_destroy(&condition);
    pthread_mutex_destroy(&mutex);
}

void ConditionPosix::Enter()
{
    SuspensionPosix::Defer();
    pthread_mutex_lock(&mutex);
}

void ConditionPosix::Exit(bool wakesOne)
{
    pthread_mutex_unlock(&mutex);
    if (wakesOne)
    {
        pthread_cond_signal(&condition); // before this thread may be suspended
    }
    SuspensionPosix::Allow();
}

void ConditionPosix::Sleep()
{
    pthread_cond_wait(&condition, &mutex);
}

bool ConditionPosix::SleepUntil(const timespec& deadline)
{
    return pthread_cond_timedwait(&condition, &mutex, &deadline) == 0;
}

void ConditionPosix::WakeOne()
{
    pthread_cond_signal(&condition);
}

void ConditionPosix::WakeAll()
{
    pthread_cond_broadcast(&condition);
}
} // namespace Nfx::Os
