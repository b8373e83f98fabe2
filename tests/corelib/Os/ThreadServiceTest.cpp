#include "Os/IEvent.h"
#include "Os/IOs.h"
#include "Os/IThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <set>
#include <vector>

namespace Nfx::Os
{
namespace
{
constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken
constexpr std::uint32_t SmallStack = 64 * 1024;

IThread& Threads()
{
    return Platform().Thread();
}

std::uint32_t RunAction(void* action)
{
    (*static_cast<std::function<void()>*>(action))();
    return 0;
}

ThreadRecord* Start(std::function<void()>& action, std::uint64_t& id)
{
    return Threads().Create(&RunAction, &action, id, SmallStack);
}

ThreadRecord* Start(std::function<void()>& action)
{
    std::uint64_t id = 0;
    return Start(action, id);
}

/// An event that stays signalled.
class Gate final
{
public:
    Gate()
    {
        CreateStatus status{};
        EXPECT_TRUE(Platform().Event().Create(handle, false, true, {}, status));
    }

    ~Gate() { Platform().Event().Close(handle); }

    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    void Open() { Platform().Event().Set(handle); }

    bool Pass(std::int32_t timeout = Deadline) { return Platform().Event().Wait(handle, timeout); }

private:
    ObjectHandle handle = 0;
};

TEST(ThreadServiceTest, WaitTellsWhetherTheThreadEndedInTime)
{
    Gate gate;
    std::uint64_t ownId = 0;
    std::function<void()> action = [&] {
        ownId = Threads().CurrentThreadId();
        gate.Pass();
    };
    std::uint64_t id = 0;
    ThreadRecord* const thread = Start(action, id);
    ASSERT_NE(thread, nullptr);
    EXPECT_FALSE(Threads().Wait(thread, 0));
    EXPECT_FALSE(Threads().Wait(thread, 10));
    EXPECT_FALSE(Threads().Wait(thread, -2));
    gate.Open();
    EXPECT_TRUE(Threads().Wait(thread, -1));
    EXPECT_TRUE(Threads().Wait(thread, 0));
    EXPECT_FALSE(Threads().Wait(thread, -2)); // not even now
    EXPECT_EQ(ownId, id);
    EXPECT_NE(Threads().CurrentThreadId(), id);
    EXPECT_TRUE(Threads().Close(thread));
    EXPECT_FALSE(Threads().Close(nullptr));
}

TEST(ThreadServiceTest, NoThreadFindsARecordOfItsOwn)
{
    EXPECT_EQ(Threads().CurrentRecord(), nullptr);
    std::function<void()> action = [] { EXPECT_EQ(Threads().CurrentRecord(), nullptr); };
    ThreadRecord* const thread = Start(action);
    EXPECT_TRUE(Threads().Wait(thread, Deadline));
    Threads().Close(thread);
}

// Takes the records without their threads: not every platform has room for as many.
TEST(ThreadServiceTest, AtMost2047ThreadsExistAtATime)
{
    std::function<void()> action = [] {};
    std::vector<ThreadRecord*> records;
    for (ThreadRecord* record = ThreadTable::Take(&RunAction, &action); record != nullptr;
         record = ThreadTable::Take(&RunAction, &action))
    {
        records.push_back(record);
    }
    EXPECT_EQ(records.size(), 2047u);
    EXPECT_EQ(std::set<ThreadRecord*>(records.begin(), records.end()).size(), records.size());
    EXPECT_EQ(Start(action), nullptr);

    ThreadRecord* const freed = records[1000];
    for (ThreadRecord* const record : records)
    {
        EXPECT_FALSE(ThreadTable::DropUseOfThread(*record));
        EXPECT_TRUE(ThreadTable::Drop(*record));
        EXPECT_FALSE(ThreadTable::Drop(*record)); // there is no use left to give up
    }
    ThreadTable::PutBack(*freed);
    ThreadRecord* const thread = Start(action);
    EXPECT_EQ(thread, freed);
    EXPECT_TRUE(Threads().Wait(thread, Deadline));
    EXPECT_EQ(Start(action), nullptr); // a record is free once it is closed
    Threads().Close(thread);
    for (ThreadRecord* const record : records)
    {
        if (record != freed)
        {
            ThreadTable::PutBack(*record);
        }
    }
}

TEST(ThreadServiceTest, RecordComesBackHoweverTheThreadEnds)
{
    Gate started;
    Gate gate;
    std::function<void()> returning = [] {};
    std::function<void()> exiting = [] { Threads().Exit(3); };
    std::function<void()> waiting = [&] {
        started.Open();
        EXPECT_FALSE(gate.Pass(-1));
    };
    ThreadRecord* const first = Start(returning);
    Threads().Wait(first, Deadline);
    Threads().Close(first);
    for (std::function<void()>* action : {&returning, &exiting, &waiting, &returning})
    {
        ThreadRecord* const thread = Start(*action);
        EXPECT_EQ(thread, first); // the first free one
        if (action == &waiting)
        {
            // Terminated while the system still sets it up, a thread may leave locks of the process behind.
            EXPECT_TRUE(started.Pass());
            EXPECT_TRUE(Threads().Terminate(thread, 1));
        }
        EXPECT_TRUE(Threads().Wait(thread, Deadline));
        EXPECT_TRUE(Threads().Close(thread));
    }
}

TEST(ThreadServiceTest, ThreadMayOutliveItsHandle)
{
    Gate gate;
    Gate left;
    std::function<void()> action = [&] {
        gate.Pass();
        left.Open();
    };
    ThreadRecord* const thread = Start(action);
    EXPECT_TRUE(Threads().Close(thread));
    std::function<void()> nothing = [] {};
    ThreadRecord* const next = Start(nothing);
    EXPECT_NE(next, thread); // still in use
    gate.Open();
    EXPECT_TRUE(left.Pass());
    EXPECT_TRUE(Threads().Wait(next, Deadline));
    Threads().Close(next);
}

TEST(ThreadServiceTest, InterruptEndsOneWaitThatBlocks)
{
    Gate closed;
    Gate open;
    open.Open();
    Gate started;
    Gate taken;
    std::atomic<bool> proceed{false};
    std::function<void()> action = [&] {
        EXPECT_FALSE(Threads().TakeInterrupt());
        started.Open();
        Threads().Sleep(1); // is none of the waits that can be interrupted
        EXPECT_FALSE(closed.Pass(-1));
        EXPECT_TRUE(Threads().TakeInterrupt());
        EXPECT_FALSE(Threads().TakeInterrupt());
        taken.Open();
        while (!proceed)
        {
            Threads().Sleep(1);
        }
        EXPECT_TRUE(open.Pass(-1)); // interrupted meanwhile, but this does not block
        Threads().Pause(-1);        // but this does
        EXPECT_TRUE(Threads().TakeInterrupt());
        Threads().Pause(1);
        EXPECT_FALSE(Threads().TakeInterrupt());
    };
    ThreadRecord* const thread = Start(action);
    EXPECT_TRUE(started.Pass());
    EXPECT_TRUE(Threads().Interrupt(thread));
    EXPECT_TRUE(taken.Pass());
    EXPECT_TRUE(Threads().Interrupt(thread));
    proceed = true;
    EXPECT_FALSE(Threads().TakeInterrupt()); // another thread's
    EXPECT_TRUE(Threads().Wait(thread, Deadline));
    Threads().Close(thread);
}

TEST(ThreadServiceTest, PriorityOutOfRangeIsTheNormalOne)
{
    Gate gate;
    std::function<void()> action = [&] { gate.Pass(); };
    ThreadRecord* const thread = Start(action);
    std::int32_t priority = -1;
    for (const std::int32_t set : {7, 1, 0})
    {
        EXPECT_TRUE(Threads().SetPriority(thread, set));
        EXPECT_TRUE(Threads().GetPriority(thread, priority));
        EXPECT_EQ(priority, set == 7 ? 2 : set);
    }
    gate.Open();
    EXPECT_TRUE(Threads().Wait(thread, Deadline));
    Threads().Close(thread);
}

TEST(ThreadServiceTest, SuspendedThreadIsResumedByOneCall)
{
    std::atomic<bool> stop{false};
    std::atomic<std::uint32_t> count{0};
    std::function<void()> action = [&] {
        while (!stop)
        {
            Threads().Sleep(0); // the thread sanitizer delivers signals in system calls alone, not in a thread's first
            ++count;
        }
    };
    ThreadRecord* const thread = Start(action);
    while (count == 0)
    {
        Threads().Sleep(1);
    }
    ASSERT_TRUE(Threads().Suspend(thread));
    const std::uint32_t stopped = count;
    EXPECT_FALSE(Threads().Wait(thread, 10));
    EXPECT_EQ(count, stopped);
    EXPECT_TRUE(Threads().Resume(thread));
    while (count == stopped)
    {
        Threads().Sleep(1);
    }
    stop = true;
    EXPECT_TRUE(Threads().Wait(thread, Deadline));
    Threads().Close(thread);
}
} // namespace
} // namespace Nfx::Os
