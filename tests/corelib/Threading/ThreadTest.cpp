#include "system/Threading/Thread.h"

#include "support/ExpectError.h"
#include "support/LambdaDelegate.h"
#include "support/WaitUntil.h"
#include "system/Threading/AutoResetEvent.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Mutex.h"
#include "system/Threading/Semaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <vector>

namespace Nfx::System::Threading
{
namespace
{
using Tests::WaitUntil;

constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken

bool Has(const Thread& thread, std::int32_t flag)
{
    return (thread.GetThreadState() & flag) != 0;
}

TEST(ThreadTest, GoesFromUnstartedOverRunningToStopped)
{
    AutoResetEvent proceed(false);
    std::atomic<std::uint64_t> ownId{0};
    Thread thread(MakeLambda([&] {
        ownId = Thread::CurrentThreadId();
        proceed.WaitOne();
    }));
    EXPECT_EQ(thread.GetThreadState().ToString(), "Unstarted");
    EXPECT_EQ(thread.GetThreadId(), 0u);
    EXPECT_ERROR(thread.Join(0), ErrorCodes::ThreadState);

    thread.Start();
    EXPECT_FALSE(thread.Join(10));
    EXPECT_TRUE(WaitUntil([&] { return thread.GetThreadState() == ThreadState::WaitSleepJoin; }));
    thread.SetBackground(true);
    EXPECT_EQ(thread.GetThreadState().ToString(), "Background, WaitSleepJoin");
    EXPECT_EQ(thread.GetThreadId(), ownId);
    EXPECT_NE(thread.GetThreadId(), Thread::CurrentThreadId());
    const Collections::Generic::List<UInt64> running = Thread::RunningThreadIds();
    EXPECT_TRUE(!running.IsEmpty() && running[running.Count() - 1] == thread.GetThreadId());
    EXPECT_ERROR(thread.Start(), ErrorCodes::ThreadState);

    proceed.Set();
    thread.Join();
    EXPECT_TRUE(thread.Join(0));
    EXPECT_EQ(thread.GetThreadState().ToString(), "Background, Stopped");
    EXPECT_ERROR(thread.Start(), ErrorCodes::ThreadState);
}

TEST(ThreadTest, RefusesWhatMakesNoSense)
{
    EXPECT_ERROR(Thread(SmartPointer<Delegate<>>()), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(Thread(SmartPointer<Delegate<Object*>>()), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(Thread::Sleep(-2), ErrorCodes::Argument);

    Thread* self = nullptr;
    Thread thread(MakeLambda([&] {
        EXPECT_ERROR(self->Join(), ErrorCodes::InvalidOperation);
        EXPECT_ERROR(self->Suspend(), ErrorCodes::InvalidOperation);
    }));
    self = &thread;
    EXPECT_ERROR(thread.Join(-2), ErrorCodes::Argument);
    EXPECT_ERROR(thread.Suspend(), ErrorCodes::ThreadState);
    EXPECT_ERROR(thread.Resume(), ErrorCodes::ThreadState);
    Int32 parameter;
    EXPECT_ERROR(thread.Start(&parameter), ErrorCodes::InvalidOperation);
    thread.Start();
    thread.Join();
    EXPECT_ERROR(thread.Suspend(), ErrorCodes::ThreadState);
    EXPECT_ERROR(thread.Resume(), ErrorCodes::ThreadState);
    EXPECT_NO_THROW(thread.Interrupt());
    EXPECT_NO_THROW(thread.Abort());
    EXPECT_EQ(thread.GetThreadState().ToString(), "Stopped");
}

TEST(ThreadTest, DelegateGetsTheParameter)
{
    Int32 parameter;
    Object* received = nullptr;
    const auto start = MakeLambda<Object*>([&](Object* object) { received = object; });
    Thread with(start);
    with.Start(&parameter);
    with.Join();
    EXPECT_EQ(received, &parameter);
    Thread without(start);
    without.Start();
    without.Join();
    EXPECT_EQ(received, nullptr);
}

TEST(ThreadTest, WhatTheDelegateThrowsEndsTheThreadAlone)
{
    const std::function<void()> actions[] = {[] { throw InvalidOperationException("x", "Some/Source", 7); },
                                             [] { throw 5; }};
    for (const std::function<void()>& action : actions)
    {
        Thread thread(MakeLambda(action));
        thread.Start();
        thread.Join();
        EXPECT_EQ(thread.GetThreadState().ToString(), "Stopped");
    }
}

TEST(ThreadTest, InterruptEndsEveryKindOfWait)
{
    Thread endless(MakeLambda([] { Thread::Sleep(-1); }));
    endless.Start();
    Semaphore semaphore(0, 1);
    AutoResetEvent event(false);
    Mutex mutex(true);
    Monitor monitor;
    const String object;
    const std::pair<const char*, std::function<void()>> waits[] = {
        {"Sleep", [] { Thread::Sleep(-1); }},
        {"Sleep with time", [] { Thread::Sleep(Deadline); }},
        {"Join", [&] { endless.Join(); }},
        {"Semaphore", [&] { semaphore.WaitOne(); }},
        {"Semaphore with time", [&] { semaphore.WaitOne(Deadline); }},
        {"Event", [&] { event.WaitOne(); }},
        {"Mutex", [&] { mutex.WaitOne(); }},
        {"Monitor",
         [&] {
             const Lock lock(monitor);
             monitor.Wait();
         }},
        {"Monitor of an object", [&] {
             const Lock lock(object);
             Monitor::Wait(object);
         }}};
    for (const auto& [name, wait] : waits)
    {
        for (const bool beforehand : {false, true})
        {
            SCOPED_TRACE(name);
            std::atomic<bool> interrupted{false};
            Thread thread(MakeLambda([&, wait = wait] {
                EXPECT_ERROR(wait(), ErrorCodes::ThreadInterrupted);
                interrupted = true;
                Thread::Sleep(1); // one interruption ends one wait
            }));
            if (beforehand)
            {
                thread.Interrupt();
            }
            thread.Start();
            EXPECT_TRUE(beforehand || WaitUntil([&] { return Has(thread, ThreadState::WaitSleepJoin); }));
            if (!beforehand)
            {
                thread.Interrupt();
            }
            EXPECT_TRUE(thread.Join(Deadline));
            EXPECT_TRUE(interrupted);
        }
    }
    endless.Interrupt();
    endless.Join();
    EXPECT_TRUE(semaphore.Release() == 0 && semaphore.WaitOne(0)); // nobody took anything
}

TEST(ThreadTest, InterruptWaitsForAWaitThatBlocks)
{
    Semaphore semaphore(2, 2);
    Thread thread(MakeLambda([&] {
        EXPECT_TRUE(semaphore.WaitOne());
        EXPECT_TRUE(semaphore.WaitOne(Deadline));
        EXPECT_FALSE(semaphore.WaitOne(0));
        EXPECT_ERROR(semaphore.WaitOne(), ErrorCodes::ThreadInterrupted);
    }));
    thread.Interrupt();
    thread.Start();
    EXPECT_TRUE(thread.Join(Deadline));
}

TEST(ThreadTest, SuspendedThreadStandsStillUntilItIsResumed)
{
    std::atomic<std::uint32_t> counter{0};
    std::atomic<bool> stop{false};
    Thread thread(MakeLambda([&] {
        while (!stop)
        {
            Thread::Sleep(0); // the thread sanitizer delivers signals in system calls alone, not in a thread's first
            ++counter;
        }
    }));
    thread.Start();
    for (int round = 0; round < 50; ++round)
    {
        const std::uint32_t before = counter;
        ASSERT_TRUE(WaitUntil([&] { return counter != before; }));
        thread.Suspend();
        EXPECT_TRUE(Has(thread, ThreadState::Suspended));
        const std::uint32_t stopped = counter;
        EXPECT_NO_THROW(thread.Suspend());
        EXPECT_ERROR(thread.Abort(), ErrorCodes::ThreadState);
        EXPECT_FALSE(thread.Join(1));
        EXPECT_EQ(counter, stopped);
        thread.Resume();
        EXPECT_ERROR(thread.Resume(), ErrorCodes::ThreadState);
    }
    stop = true;
    thread.Join();
}

TEST(ThreadTest, SuspendedThreadKeepsNobodyFromTheObjectsItWaitsFor)
{
    Semaphore semaphore(0, 100000);
    std::atomic<int> taken{0};
    Thread thread(MakeLambda([&] {
        Thread::Sleep(0); // the thread sanitizer may lose a signal that comes at a thread's first system call
        while (semaphore.WaitOne())
        {
            ++taken;
        }
    }));
    thread.Start();
    semaphore.Release();
    ASSERT_TRUE(WaitUntil([&] { return taken == 1; }));
    int released = 1;
    for (int round = 0; round < 500; ++round)
    {
        semaphore.Release();
        thread.Suspend();
        const int stopped = taken;
        semaphore.Release(); // must not block, wherever in its wait the thread was caught
        released += 2;
        EXPECT_EQ(taken, stopped);
        thread.Resume();
    }
    EXPECT_TRUE(WaitUntil([&] { return taken == released; }));
    thread.Suspend();
    thread.Interrupt();
    thread.Resume();
    EXPECT_TRUE(thread.Join(Deadline));
}

TEST(ThreadTest, AbortEndsAThreadThatWaits)
{
    Semaphore semaphore(0, 1);
    Thread thread(MakeLambda([&] {
        for (;;)
        {
            try
            {
                semaphore.WaitOne();
            }
            catch (const Exception&)
            {
                ADD_FAILURE() << "an aborted thread goes on";
            }
        }
    }));
    thread.Start();
    EXPECT_TRUE(WaitUntil([&] { return Has(thread, ThreadState::WaitSleepJoin); }));
    thread.Abort();
    EXPECT_TRUE(thread.Join(Deadline));
    EXPECT_EQ(thread.GetThreadState().ToString(), "Aborted");
    EXPECT_NO_THROW(thread.Abort());

    Thread unstarted(MakeLambda([] { ADD_FAILURE() << "an aborted thread starts"; }));
    unstarted.Abort();
    EXPECT_EQ(unstarted.GetThreadState().ToString(), "Aborted");
    EXPECT_ERROR(unstarted.Start(), ErrorCodes::ThreadState);
    EXPECT_TRUE(unstarted.Join(0));
}

TEST(ThreadTest, ThreadThatAbortsItselfUnwinds)
{
    Thread* self = nullptr;
    bool unwound = false;
    Thread thread(MakeLambda([&] {
        struct Unwinding
        {
            bool& flag;
            ~Unwinding() { flag = true; }
        } const unwinding{unwound};
        self->Abort();
    }));
    self = &thread;
    thread.Start();
    thread.Join();
    EXPECT_TRUE(unwound);
    EXPECT_EQ(thread.GetThreadState().ToString(), "Aborted");
}

TEST(ThreadTest, PriorityReadsBackAsSetUnlessThePlatformRefuses)
{
    AutoResetEvent end(false);
    Thread thread(MakeLambda([&] { end.WaitOne(); }));
    EXPECT_EQ(thread.GetPriority().ToString(), "Normal");
    thread.SetPriority(ThreadPriority::BelowNormal);
    thread.Start();
    EXPECT_EQ(thread.GetPriority().ToString(), "BelowNormal");
    EXPECT_TRUE(thread.SetPriority(ThreadPriority::Lowest));
    EXPECT_EQ(thread.GetPriority().ToString(), "Lowest");
    for (const std::int32_t unknown : {7, 5, -1, std::int32_t{ThreadPriority::Highest}})
    {
        const std::int32_t wanted = unknown == ThreadPriority::Highest ? unknown : ThreadPriority::Normal;
        const ThreadPriority before = thread.GetPriority();
        const bool granted = thread.SetPriority(unknown); // not without the right to
        EXPECT_EQ(thread.GetPriority(), granted ? wanted : std::int32_t{before}) << unknown;
    }
    end.Set();
    thread.Join();
    EXPECT_NO_THROW(thread.SetPriority(ThreadPriority::AboveNormal));
    EXPECT_EQ(thread.GetPriority().ToString(), "AboveNormal");
}

TEST(ThreadTest, ThreadsLeaveNothingBehindWhetherOrNotTheyOutliveTheirObject)
{
    Semaphore ends(0, 1);
    for (int cycle = 0; cycle < 6000; ++cycle) // either way more than there are records
    {
        Thread thread(MakeLambda([&] { ends.Release(); }));
        thread.Start();
        ends.WaitOne();
        if (cycle % 2 == 0)
        {
            thread.Join();
        }
    }
    EXPECT_TRUE(WaitUntil([] { return Thread::RunningThreadIds().IsEmpty(); }));
}
} // namespace
} // namespace Nfx::System::Threading
