#include "Os/Posix/SuspensionPosix.h"

#include <cerrno>
#include <csignal>

namespace Nfx::Os
{
namespace
{
constinit thread_local SuspensionPosix* current = nullptr;

sigset_t SuspendSignalOnly() noexcept
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SuspensionPosix::Signal());
    return set;
}
} // namespace

SuspensionPosix::SuspensionPosix()
{
    sem_init(&seen, 0, 0);
}

SuspensionPosix::~SuspensionPosix()
{
    sem_destroy(&seen);
}

int SuspensionPosix::Signal() noexcept
{
    return SIGRTMAX - 3; // the first and the last ones are what tools and run-time systems take
}

void SuspensionPosix::SetCurrent(SuspensionPosix* suspension) noexcept
{
    current = suspension;
}

void SuspensionPosix::Defer() noexcept
{
    if (current != nullptr)
    {
        current->deferrals.fetch_add(1, std::memory_order_relaxed);
    }
}

void SuspensionPosix::Allow() noexcept
{
    if (current != nullptr && current->deferrals.fetch_sub(1, std::memory_order_relaxed) == 1 &&
        current->isDeferred.exchange(false, std::memory_order_relaxed))
    {
        current->StopHere();
    }
}

bool SuspensionPosix::Suspend(pthread_t thread)
{
    struct sigaction action = {};
    if (sigaction(Signal(), nullptr, &action) != 0)
    {
        return false;
    }
    if (action.sa_handler == SIG_DFL)
    {
        action.sa_handler = &SuspensionPosix::OnSignal;
        action.sa_flags = SA_RESTART;
        sigfillset(&action.sa_mask);
        if (sigaction(Signal(), &action, nullptr) != 0)
        {
            return false;
        }
    }
    if (action.sa_handler != &SuspensionPosix::OnSignal || generation.load(std::memory_order_relaxed) % 2 != 0)
    {
        return false;
    }
    generation.fetch_add(1, std::memory_order_release);
    if (pthread_kill(thread, Signal()) != 0)
    {
        generation.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    while (sem_wait(&seen) != 0)
    {
        // interrupted by a signal of the calling thread
    }
    return true;
}

bool SuspensionPosix::Resume(pthread_t thread)
{
    if (generation.load(std::memory_order_relaxed) % 2 == 0)
    {
        return false;
    }
    generation.fetch_add(1, std::memory_order_release);
    return pthread_kill(thread, Signal()) == 0; // gets the thread out of sigsuspend
}

void SuspensionPosix::OnSignal(int)
{
    const int savedError = errno;
    if (current != nullptr)
    {
        current->OnSignalOfThisThread();
    }
    errno = savedError;
}

void SuspensionPosix::OnSignalOfThisThread() noexcept
{
    if (isStopped.load(std::memory_order_relaxed))
    {
        return; // the signal only ends the sigsuspend that this one came in
    }
    if (!IsRequested())
    {
        return;
    }
    if (deferrals.load(std::memory_order_relaxed) > 0)
    {
        isDeferred.store(true, std::memory_order_relaxed);
        return;
    }
    StopUntilResumed();
}

void SuspensionPosix::StopHere() noexcept
{
    const sigset_t blocked = SuspendSignalOnly();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    StopUntilResumed();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// Tells the suspender, once, that the thread knows.
bool SuspensionPosix::IsRequested() noexcept
{
    const std::uint32_t requested = generation.load(std::memory_order_acquire);
    if (requested % 2 == 0)
    {
        return false;
    }
    if (acknowledged.exchange(requested, std::memory_order_relaxed) != requested)
    {
        sem_post(&seen);
    }
    return true;
}

// With the signal blocked: between the question and the sleep it must not get lost.
void SuspensionPosix::StopUntilResumed() noexcept
{
    sigset_t whileStopped;
    pthread_sigmask(SIG_BLOCK, nullptr, &whileStopped);
    sigdelset(&whileStopped, Signal());

    isStopped.store(true, std::memory_order_relaxed);
    while (IsRequested())
    {
        sigsuspend(&whileStopped);
    }
    isStopped.store(false, std::memory_order_relaxed);
}
} // namespace Nfx::Os
