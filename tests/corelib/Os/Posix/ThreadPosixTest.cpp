#include "Os/IOs.h"
#include "Os/IThread.h"
#include "support/LambdaDelegate.h"
#include "support/WaitUntil.h"
#include "system/Threading/AutoResetEvent.h"
#include "system/Threading/Thread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <linux/capability.h>
#include <pthread.h>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Nfx::System::Threading
{
namespace
{
int NiceOf(const Thread& thread)
{
    return getpriority(PRIO_PROCESS, static_cast<id_t>(thread.GetThreadId()));
}

int ClassOf(const Thread& thread)
{
    return sched_getscheduler(static_cast<pid_t>(thread.GetThreadId())) & ~SCHED_RESET_ON_FORK;
}

/// Of the calling thread.
void DropRightToPriorities()
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct rights[_LINUX_CAPABILITY_U32S_3] = {};
    ASSERT_EQ(syscall(SYS_capget, &header, rights), 0);
    rights[CAP_TO_INDEX(CAP_SYS_NICE)].effective &= ~CAP_TO_MASK(CAP_SYS_NICE);
    ASSERT_EQ(syscall(SYS_capset, &header, rights), 0);
}

TEST(ThreadPosixTest, SignalsOfTheProcessAreLeftToItsOwnThreads)
{
    sigset_t blocked;
    Thread thread(MakeLambda([&] { pthread_sigmask(SIG_BLOCK, nullptr, &blocked); }));
    thread.Start();
    thread.Join();
    for (const int signal : {SIGINT, SIGTERM, SIGCHLD, SIGUSR1, SIGALRM, SIGPIPE, SIGXFSZ})
    {
        EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
    }
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) // the host's handler must see them
    {
        EXPECT_EQ(sigismember(&blocked, fault), 0) << fault;
    }
    sigset_t own;
    pthread_sigmask(SIG_BLOCK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGUSR1), 0); // Start puts the mask of its caller back
}

TEST(ThreadPosixTest, SignalsOfRunTimeSystemsAreBlockedWhenTheCreatorBlocksThem)
{
    sigset_t own;
    sigemptyset(&own);
    sigaddset(&own, SIGRTMIN);
    sigaddset(&own, SIGXCPU);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &own, &previous);
    sigset_t blocked;
    Thread thread(MakeLambda([&] { pthread_sigmask(SIG_BLOCK, nullptr, &blocked); }));
    thread.Start();
    thread.Join();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    for (const int signal : {SIGRTMIN, SIGXCPU}) // a host that waits for them itself must get them
    {
        EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
    }
    for (const int signal : {SIGRTMIN + 1, SIGRTMAX, SIGPWR}) // else a run-time system could not halt the thread
    {
        EXPECT_EQ(sigismember(&blocked, signal), 0) << signal;
    }
}

TEST(ThreadPosixTest, SuspensionKeepsTheErrorNumberOfWhatItInterrupts)
{
    std::atomic<bool> stop{false};
    std::atomic<bool> kept{true};
    std::atomic<int> rounds{0};
    Thread thread(MakeLambda([&] {
        while (!stop)
        {
            errno = ERANGE;
            for (int spin = 0; spin < 100; ++spin)
            {
                kept = kept && errno == ERANGE;
            }
            Thread::Sleep(0); // the thread sanitizer delivers signals in system calls alone
            ++rounds;
        }
    }));
    thread.Start();
    EXPECT_TRUE(Tests::WaitUntil([&] { return rounds > 0; }));
    for (int round = 0; round < 200; ++round)
    {
        thread.Suspend();
        thread.Resume();
    }
    stop = true;
    thread.Join();
    EXPECT_TRUE(kept);
}

TEST(ThreadPosixTest, AThreadSuspendedOnItsLastStepsKeepsNobodyWaiting)
{
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer delivers no signal to a thread that waits for a lock";
#endif
#endif
    struct Ending
    {
        const int Round;
        std::atomic<bool> HasBegun{false};
    };

    Os::IThread& threads = Os::Platform().Thread();
    for (int round = 0; round < 500; ++round)
    {
        Ending ending{round};
        const auto end = [](void* parameter) -> std::uint32_t {
            Ending& mine = *static_cast<Ending*>(parameter);
            Os::Platform().Thread().Sleep(0); // the thread sanitizer may lose a signal at the first system call
            mine.HasBegun = true;
            for (std::atomic<int> left = mine.Round % 50 * 5; left > 0; --left) // to be caught at each of them
            {
            }
            return 0;
        };
        std::uint64_t id = 0;
        Os::ThreadRecord* const thread = threads.Create(end, &ending, id, 64 * 1024);
        ASSERT_NE(thread, nullptr);
        while (!ending.HasBegun)
        {
        }
        const bool isSuspended = threads.Suspend(thread);
        threads.Wait(thread, 0); // must return, wherever the thread was caught
        EXPECT_TRUE(!isSuspended || threads.Resume(thread));
        EXPECT_TRUE(threads.Wait(thread, -1));
        threads.Close(thread);
    }
}

TEST(ThreadPosixTest, PriorityIsTheThreadsAlone)
{
    const int processNice = getpriority(PRIO_PROCESS, 0);
    AutoResetEvent end(false);
    Thread thread(MakeLambda([&] {
        AutoResetEvent childEnd(false);
        Thread child(MakeLambda([&] { childEnd.WaitOne(); }));
        child.Start();
        EXPECT_EQ(NiceOf(child), processNice); // does not inherit it
        childEnd.Set();
        child.Join();
        end.WaitOne();
    }));
    thread.SetPriority(ThreadPriority::Lowest);
    thread.Start();
    EXPECT_EQ(NiceOf(thread), std::min(processNice + 10, 19)); // the system knows no higher one
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), processNice);
    end.Set();
    thread.Join();
}

TEST(ThreadPosixTest, TheHighestPriorityGoesBeforeTheHostsThreadsButNotInItsChildren)
{
    AutoResetEvent raised(false);
    AutoResetEvent childEnded(false);
    AutoResetEvent end(false);
    Thread thread(MakeLambda([&] {
        raised.WaitOne();
        Thread child(MakeLambda([] { EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER); }));
        child.Start();
        child.Join();
        childEnded.Set();
        end.WaitOne();
    }));
    thread.SetPriority(ThreadPriority::Highest);
    thread.Start();
    EXPECT_EQ(ClassOf(thread), SCHED_RR);
    raised.Set();
    childEnded.WaitOne();
    thread.SetPriority(ThreadPriority::Normal);
    EXPECT_EQ(ClassOf(thread), SCHED_OTHER);

    // A kernel that is to end those that run for too long without a rest would end the host.
    const rlimit unlimited = {RLIM_INFINITY, RLIM_INFINITY};
    const rlimit limited = {200'000, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_RTTIME, &limited), 0);
    thread.SetPriority(ThreadPriority::Highest);
    EXPECT_EQ(ClassOf(thread), SCHED_OTHER);
    ASSERT_EQ(setrlimit(RLIMIT_RTTIME, &unlimited), 0);
    for (int time = 0; time < 2; ++time)
    {
        thread.SetPriority(ThreadPriority::Highest);
        EXPECT_EQ(ClassOf(thread), SCHED_RR);
    }
    end.Set();
    thread.Join();
}

TEST(ThreadPosixTest, ARefusedPriorityChangesNothing)
{
    AutoResetEvent end(false);
    Thread thread(MakeLambda([&] { end.WaitOne(); }));
    thread.SetPriority(ThreadPriority::Highest);
    thread.Start();
    const int processNice = getpriority(PRIO_PROCESS, 0);
    ASSERT_EQ(setpriority(PRIO_PROCESS, 0, -20), 0); // priorities count from it: any further one needs a right
    Thread unprivileged(MakeLambda([&] {
        DropRightToPriorities();
        EXPECT_FALSE(thread.SetPriority(ThreadPriority::AboveNormal));
    }));
    unprivileged.Start();
    unprivileged.Join();
    EXPECT_EQ(setpriority(PRIO_PROCESS, 0, processNice), 0);
    EXPECT_EQ(thread.GetPriority(), ThreadPriority::Highest);
    EXPECT_EQ(ClassOf(thread), SCHED_RR);
    end.Set();
    thread.Join();
}

TEST(ThreadPosixTest, NameShowsAsFarAsThereIsRoom)
{
    AutoResetEvent end(false);
    Thread thread(MakeLambda([&] { end.WaitOne(); }));
    thread.SetName("MessageParser of the server");
    thread.Start();
    std::string shown;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(thread.GetThreadId()) + "/comm"), shown);
    EXPECT_EQ(shown, "MessageParser o");
    end.Set();
    thread.Join();
}

} // namespace
} // namespace Nfx::System::Threading
