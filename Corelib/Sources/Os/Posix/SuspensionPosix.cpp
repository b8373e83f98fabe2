#include "Os/Posix/SuspensionPosix.h"

#include <cerrno>
#include <csignal>

namespace Nfx::Os
{
namespace
{
constinit thread_local SuspensionPosix* current = nullptr;

// False when the process uses the signal for something else.
bool TakeSignal(void (*handler)(int)) noexcept
{
    struct sigaction action = {};
    if (sigaction(SuspensionPosix::Signal(), nullptr, &action) != 0)
    {
        return false;
    }
    if (action.sa_handler == SIG_DFL)
    {
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigfillset(&action.sa_mask);
        return sigaction(SuspensionPosix::Signal(), &action, nullptr) == 0;
    }
    return action.sa_handler == handler;
}
} // namespace

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
        current->state == Deferred)
    {
        const int savedError = errno;
        current->StopUntilResumed();
        errno = savedError;
    }
}

bool SuspensionPosix::Suspend(pthread_t thread)
{
    if (state != Running || !TakeSignal(&SuspensionPosix::OnSignal))
    {
        return false;
    }
    state = Requested;
    if (pthread_kill(thread, Signal()) != 0)
    {
        state = Running;
        return false;
    }
    state.wait(Requested);
    return true;
}

bool SuspensionPosix::Resume() noexcept
{
    if (state == Running)
    {
        return false;
    }
    state = Running;
    state.notify_all();
    return true;
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
    if (deferrals.load(std::memory_order_relaxed) == 0)
    {
        StopUntilResumed();
        return;
    }
    int expected = Requested;
    if (state.compare_exchange_strong(expected, Deferred))
    {
        state.notify_all();
    }
}

// When the thread is suspended anew before it gets going, the signal stops it once more on top of this.
void SuspensionPosix::StopUntilResumed() noexcept
{
    int request = state;
    if ((request == Requested || request == Deferred) && state.compare_exchange_strong(request, Stopped))
    {
        state.notify_all();
        state.wait(Stopped);
    }
}
} // namespace Nfx::Os
