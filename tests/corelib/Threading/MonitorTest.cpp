#include "system/Threading/Monitor.h"

#include "support/ExpectError.h"
#include "support/LambdaDelegate.h"
#include "system/String.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Semaphore.h"
#include "system/Threading/Thread.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace Nfx::System::Threading
{
namespace
{
constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken

/// The operations of a monitor of one's own and of an object's, for tests that both must pass. The analysis of locks
/// cannot follow operations that are called by name.
class AnyMonitor
{
public:
    virtual ~AnyMonitor() = default;
    virtual void Enter() = 0;
    virtual bool TryEnter(std::int32_t timeout) = 0;
    virtual void Exit() = 0;
    virtual bool Wait(std::int32_t timeout) = 0;
    virtual void Pulse() = 0;
    virtual void PulseAll() = 0;
};

class OwnMonitor final : public AnyMonitor
{
public:
    void Enter() override NFX_NO_THREAD_SAFETY_ANALYSIS { monitor.Enter(); }

    bool TryEnter(std::int32_t timeout) override NFX_NO_THREAD_SAFETY_ANALYSIS { return monitor.TryEnter(timeout); }

    void Exit() override NFX_NO_THREAD_SAFETY_ANALYSIS { monitor.Exit(); }

    bool Wait(std::int32_t timeout) override NFX_NO_THREAD_SAFETY_ANALYSIS { return monitor.Wait(timeout); }

    void Pulse() override NFX_NO_THREAD_SAFETY_ANALYSIS { monitor.Pulse(); }

    void PulseAll() override NFX_NO_THREAD_SAFETY_ANALYSIS { monitor.PulseAll(); }

private:
    Monitor monitor;
};

class ObjectMonitor final : public AnyMonitor
{
public:
    void Enter() override { Monitor::Enter(object); }

    bool TryEnter(std::int32_t timeout) override { return Monitor::TryEnter(object, timeout); }

    void Exit() override { Monitor::Exit(object); }

    bool Wait(std::int32_t timeout) override { return Monitor::Wait(object, timeout); }

    void Pulse() override { Monitor::Pulse(object); }

    void PulseAll() override { Monitor::PulseAll(object); }

private:
    String object;
};

template <class TMonitor>
class MonitorTest : public testing::Test
{
protected:
    ~MonitorTest() override
    {
        for (const SmartPointer<Thread>& thread : threads)
        {
            thread->Join();
            EXPECT_EQ(thread->GetFailure(), "");
        }
    }

    void Run(std::function<void()> action)
    {
        threads.emplace_back(new Thread(MakeLambda(std::move(action))));
        threads.back()->Start();
    }

    TMonitor monitor;
    std::vector<SmartPointer<Thread>> threads;
};

using MonitorKinds = testing::Types<OwnMonitor, ObjectMonitor>;
TYPED_TEST_SUITE(MonitorTest, MonitorKinds);

TYPED_TEST(MonitorTest, OneThreadAtATimeIsIn)
{
    constexpr int rounds = 5000;
    int count = 0;
    {
        std::vector<SmartPointer<Thread>> counting;
        for (int index = 0; index < 4; ++index)
        {
            counting.emplace_back(new Thread(MakeLambda([&] {
                for (int round = 0; round < rounds; ++round)
                {
                    this->monitor.Enter();
                    this->monitor.Enter();
                    ++count;
                    this->monitor.Exit();
                    ++count;
                    this->monitor.Exit();
                }
            })));
            counting.back()->Start();
        }
        for (const SmartPointer<Thread>& thread : counting)
        {
            thread->Join();
        }
    }
    EXPECT_EQ(count, 4 * rounds * 2);
}

TYPED_TEST(MonitorTest, OwnerMayEnterAgainAndOthersWaitForItsLastExit)
{
    Semaphore tried(0, 1);
    this->monitor.Enter();
    EXPECT_TRUE(this->monitor.TryEnter(0));
    this->monitor.Exit();
    this->Run([&] {
        EXPECT_FALSE(this->monitor.TryEnter(0));
        EXPECT_FALSE(this->monitor.TryEnter(20));
        EXPECT_ERROR(this->monitor.Exit(), ErrorCodes::InvalidOperation);
        tried.Release();
        EXPECT_TRUE(this->monitor.TryEnter(Deadline));
        this->monitor.Exit();
        this->monitor.Enter();
        this->monitor.Exit();
    });
    EXPECT_TRUE(tried.WaitOne(Deadline));
    this->monitor.Exit();
}

TYPED_TEST(MonitorTest, RefusesThoseWhoDoNotOwnIt)
{
    EXPECT_ERROR(this->monitor.Exit(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(this->monitor.Wait(0), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(this->monitor.Pulse(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(this->monitor.PulseAll(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(this->monitor.TryEnter(-2), ErrorCodes::InvalidParameterValue);
    this->monitor.Enter();
    EXPECT_ERROR(this->monitor.Wait(-2), ErrorCodes::InvalidParameterValue);
    this->monitor.Exit();
}

TYPED_TEST(MonitorTest, PulseWakesWhoHasWaitedLongestAndPulseAllTheRest)
{
    std::vector<int> woken;
    Semaphore wokenOne(0, 4);
    for (int index = 0; index < 4; ++index)
    {
        Semaphore entered(0, 1);
        this->Run([&, index] {
            this->monitor.Enter();
            this->monitor.Enter(); // the wait gives up both entries and takes both again
            entered.Release();
            EXPECT_TRUE(this->monitor.Wait(Deadline));
            woken.push_back(index);
            this->monitor.Exit();
            this->monitor.Exit();
            wokenOne.Release();
        });
        EXPECT_TRUE(entered.WaitOne(Deadline));
        this->monitor.Enter(); // possible once it waits
        this->monitor.Exit();
    }
    for (const int expected : {0, 1})
    {
        this->monitor.Enter();
        this->monitor.Pulse();
        this->monitor.Exit();
        EXPECT_TRUE(wokenOne.WaitOne(Deadline));
        EXPECT_EQ(woken.back(), expected);
    }
    this->monitor.Enter();
    this->monitor.PulseAll();
    EXPECT_EQ(woken.size(), 2u); // nobody gets in before this thread is out
    this->monitor.Exit();
    EXPECT_TRUE(wokenOne.WaitOne(Deadline) && wokenOne.WaitOne(Deadline));
    EXPECT_EQ(woken.size(), 4u);
}

TYPED_TEST(MonitorTest, WaitEndsWithItsTimeAndForgetsTheWaiter)
{
    this->monitor.Enter();
    EXPECT_FALSE(this->monitor.Wait(0));
    EXPECT_FALSE(this->monitor.Wait(20));
    EXPECT_NO_THROW(this->monitor.Pulse());
    EXPECT_FALSE(this->monitor.Wait(0)); // a pulse that nobody waited for is lost
    this->monitor.Exit();
}

TYPED_TEST(MonitorTest, PulseIsNotUsedUpByAThreadThatIsInterrupted)
{
    for (int round = 0; round < 100; ++round)
    {
        Semaphore entered(0, 2);
        Semaphore pulsed(0, 1);
        Thread interrupted(MakeLambda([&] {
            this->monitor.Enter();
            entered.Release();
            try
            {
                this->monitor.Wait(-1);
                pulsed.Release();
            }
            catch (const ThreadInterruptedException&)
            {
            }
            this->monitor.Exit();
        }));
        interrupted.Start();
        EXPECT_TRUE(entered.WaitOne(Deadline));
        this->monitor.Enter();
        this->monitor.Exit();
        Thread other(MakeLambda([&] {
            this->monitor.Enter();
            entered.Release();
            if (this->monitor.Wait(-1))
            {
                pulsed.Release();
            }
            this->monitor.Exit();
        }));
        other.Start();
        EXPECT_TRUE(entered.WaitOne(Deadline));

        this->monitor.Enter();
        interrupted.Interrupt();
        this->monitor.Pulse();
        this->monitor.Exit();
        EXPECT_TRUE(pulsed.WaitOne(Deadline));
        EXPECT_TRUE(interrupted.Join(Deadline));

        this->monitor.Enter();
        this->monitor.PulseAll();
        this->monitor.Exit();
        EXPECT_TRUE(other.Join(Deadline));
    }
}

TEST(LockTest, HoldsTheMonitorOrTheLockOfTheObject)
{
    Monitor monitor;
    const String object;
    const auto isFree = [&] {
        bool free = false;
        Thread other(MakeLambda([&] {
            if (monitor.TryEnter())
            {
                free = true;
                monitor.Exit();
            }
            if (Monitor::TryEnter(object))
            {
                Monitor::Exit(object);
            }
            else
            {
                free = false;
            }
        }));
        other.Start();
        other.Join();
        return free;
    };
    {
        const Lock lock(monitor);
        EXPECT_FALSE(isFree());
    }
    {
        const Lock outer(object);
        const Lock inner(object);
        EXPECT_FALSE(isFree());
    }
    EXPECT_TRUE(isFree());
}
} // namespace
} // namespace Nfx::System::Threading
