#include "Os/Posix/ThreadBlockPosix.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstring>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace Nfx::Os
{
namespace
{
constinit thread_local ThreadBlockPosix* current = nullptr;

constexpr std::int32_t NicePerPriority = -5; // five steps a priority make a difference that shows
constexpr std::int32_t HighestPriority = 2;

// Signals sent to the process belong to the host's threads. A fault of the thread itself reaches the host's handler,
// and the signal of Suspend must come through. Managed run-time systems halt every thread that has called into them by
// one of the signals left to the creator's mask, and wait for it before they collect garbage.
sigset_t SignalsBlockedInThreads(const sigset_t& blockedInCreator) noexcept
{
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int deliverable : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS})
    {
        sigdelset(&blocked, deliverable);
    }
    const auto inherit = [&](int signal) {
        if (sigismember(&blockedInCreator, signal) == 0)
        {
            sigdelset(&blocked, signal);
        }
    };
    inherit(SIGPWR);
    inherit(SIGXCPU);
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal)
    {
        inherit(signal);
    }
    sigdelset(&blocked, SuspensionPosix::Signal());
    return blocked;
}

std::size_t UsableStackSize(std::uint32_t requested) noexcept
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t size = std::max<std::size_t>(requested, static_cast<std::size_t>(PTHREAD_STACK_MIN));
    return (size + page - 1) / page * page;
}

int NiceOf(std::int32_t priority) noexcept
{
    const int processNice = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return std::clamp(processNice + NicePerPriority * priority, -20, 19);
}

bool SetNice(pid_t thread, int nice) noexcept
{
    return setpriority(PRIO_PROCESS, static_cast<id_t>(thread), nice) == 0;
}

// A thread of the class SCHED_OTHER that wakes may wait for milliseconds until another one has had its turn, whatever
// their nice values. The receiver of datagrams, which has the highest priority, would lose what comes meanwhile.
// Threads of the real-time class SCHED_RR go before all of SCHED_OTHER, even with the lowest real-time priority.
//
// The class is not entered by a thread whose host has put it into another class, nor under a limit RLIMIT_RTTIME: the
// kernel would end the process in a flood of datagrams.
bool EnterRealTimeClass(pid_t thread) noexcept
{
    rlimit longestRun = {};
    if ((sched_getscheduler(thread) & ~SCHED_RESET_ON_FORK) != SCHED_OTHER ||
        getrlimit(RLIMIT_RTTIME, &longestRun) != 0 || longestRun.rlim_cur != RLIM_INFINITY)
    {
        return false;
    }
    const sched_param lowest = {.sched_priority = sched_get_priority_min(SCHED_RR)};
    return sched_setscheduler(thread, SCHED_RR | SCHED_RESET_ON_FORK, &lowest) == 0;
}

void LeaveRealTimeClass(pid_t thread) noexcept
{
    const sched_param none = {};
    sched_setscheduler(thread, SCHED_OTHER | SCHED_RESET_ON_FORK, &none);
}

// A new thread has the value of the one that created it, which may just be given another priority.
void ForgetInheritedNice() noexcept
{
    const int normal = NiceOf(0);
    if (getpriority(PRIO_PROCESS, 0) != normal)
    {
        SetNice(gettid(), normal);
    }
}
} // namespace

/// From a thread's first step to its last but one, however it ends.
class ThreadBlockPosix::Life final
{
public:
    explicit Life(ThreadBlockPosix& block)
        : block(block)
    {
        current = &block;
        SuspensionPosix::SetCurrent(&block.suspension);
        InterruptionPosix::SetCurrent(&block.interruption);
        ForgetInheritedNice();
        const ConditionPosix::Guard lock(block.condition);
        block.kernelId = gettid();
        block.condition.WakeAll();
    }

    ~Life()
    {
        InterruptionPosix::SetCurrent(nullptr);
        {
            const ConditionPosix::Guard lock(block.condition);
            block.hasEnded = true;
            block.condition.WakeAll();
            SuspensionPosix::SetCurrent(nullptr); // from here on the thread does not stop: others join it
        }
        current = nullptr;
        ThreadRecord& record = block.record;
        if (ThreadTable::DropUseOfThread(record))
        {
            delete &block;
            ThreadTable::PutBack(record);
        }
    }

    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

private:
    ThreadBlockPosix& block;
};

ThreadBlockPosix::ThreadBlockPosix(ThreadRecord& record)
    : record(record)
    , interruption(record.Interrupted)
{
}

ThreadBlockPosix& ThreadBlockPosix::Of(const ThreadRecord& record) noexcept
{
    return *static_cast<ThreadBlockPosix*>(record.Handle.load(std::memory_order_relaxed));
}

ThreadBlockPosix* ThreadBlockPosix::Current() noexcept
{
    return current;
}

bool ThreadBlockPosix::Start(std::uint32_t stackSize, std::uint64_t& threadId)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
    {
        return false;
    }
    pthread_attr_setstacksize(&attributes, UsableStackSize(stackSize));

    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    const sigset_t blocked = SignalsBlockedInThreads(before); // the new thread inherits the mask
    pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    const bool started = pthread_create(&thread, &attributes, &ThreadBlockPosix::Run, this) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);

    pthread_attr_destroy(&attributes);
    if (started)
    {
        const ConditionPosix::Guard lock(condition);
        while (kernelId == 0) // only the thread itself can tell it
        {
            condition.Sleep();
        }
        threadId = static_cast<std::uint64_t>(kernelId);
    }
    return started;
}

void* ThreadBlockPosix::Run(void* block)
{
    ThreadBlockPosix& self = *static_cast<ThreadBlockPosix*>(block);
    const Life life(self);
    self.record.Start(self.record.Parameter);
    return nullptr;
}

ThreadRecord& ThreadBlockPosix::Record() noexcept
{
    return record;
}

bool ThreadBlockPosix::TryTake()
{
    return hasEnded;
}

bool ThreadBlockPosix::Join(std::int32_t timeout)
{
    if (!Wait(timeout))
    {
        return false;
    }
    const ConditionPosix::Guard lock(condition);
    if (!isJoined)
    {
        pthread_join(thread, nullptr); // the thread is past its last use of this block
        isJoined = true;
    }
    return true;
}

void ThreadBlockPosix::Detach()
{
    const ConditionPosix::Guard lock(condition);
    if (!isJoined)
    {
        pthread_detach(thread);
    }
}

void ThreadBlockPosix::Interrupt()
{
    interruption.Request();
}

bool ThreadBlockPosix::Suspend()
{
    const ConditionPosix::Guard lock(condition);
    return !hasEnded && current != this && suspension.Suspend(thread);
}

bool ThreadBlockPosix::Resume()
{
    const ConditionPosix::Guard lock(condition);
    return suspension.Resume(); // also of a thread that was stopped on its last steps
}

std::int32_t ThreadBlockPosix::GetPriority()
{
    const ConditionPosix::Guard lock(condition);
    return priority;
}

bool ThreadBlockPosix::SetPriority(std::int32_t newPriority)
{
    const ConditionPosix::Guard lock(condition);
    if (hasEnded)
    {
        return false;
    }
    const bool willBeRealTime = newPriority == HighestPriority && (isRealTime || EnterRealTimeClass(kernelId));
    if (!SetNice(kernelId, NiceOf(newPriority)) && !willBeRealTime)
    {
        return false;
    }
    if (isRealTime && !willBeRealTime)
    {
        LeaveRealTimeClass(kernelId);
    }
    isRealTime = willBeRealTime;
    priority = newPriority;
    return true;
}

bool ThreadBlockPosix::SetName(const char* name)
{
    constexpr std::size_t longestName = 15;
    const std::string cut(name, strnlen(name, longestName));
    const ConditionPosix::Guard lock(condition);
    return !hasEnded && pthread_setname_np(thread, cut.c_str()) == 0;
}
} // namespace Nfx::Os
