#include "system/Threading/Monitor.h"

#include "support/ExpectError.h"
#include "support/LambdaDelegate.h"
#include "system/String.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Semaphore.h"
#include "system/Threading/Thread.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace Nfx::System::Threading
{
namespace
{
constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken

/// A monitor, used by way of the object that it belongs to.
class ObjectMonitor final
{
public:
    void Enter() const { Monitor::Enter(object); }

    void Exit() const { Monitor::Exit(object); }

    bool Wait(std::int32_t timeout) const { return Monitor::Wait(object, timeout); }

    void Pulse() const { Monitor::Pulse(object); }

    void PulseAll() const { Monitor::PulseAll(object); }

private:
    const String object{};
};

class MonitorTest : public testing::Test
{
protected:
    ~MonitorTest() override { JoinAll(); }

    void JoinAll()
    {
        for (const SmartPointer<Thread>& thread : threads)
        {
            thread->Join();
        }
        threads.clear();
    }

    void Run(std::function<void()> action)
    {
        threads.emplace_back(new Thread(MakeLambda(std::move(action))));
        threads.back()->Start();
    }

    const ObjectMonitor monitor{};
    std::vector<SmartPointer<Thread>> threads;
};

TEST_F(MonitorTest, OneThreadAtATimeIsIn)
{
    constexpr int rounds = 5000;
    int count = 0;
    for (int index = 0; index < 4; ++index)
    {
        Run([&] {
            for (int round = 0; round < rounds; ++round)
            {
                monitor.Enter();
                monitor.Enter();
                ++count;
                monitor.Exit();
                ++count;
                monitor.Exit();
            }
        });
    }
    JoinAll();
    EXPECT_EQ(count, 4 * rounds * 2);
}

TEST_F(MonitorTest, OwnerMayEnterAgainAndOthersWaitForItsLastExit)
{
    Semaphore refused(0, 1);
    Semaphore entered(0, 1);
    monitor.Enter();
    monitor.Enter();
    Run([&] {
        EXPECT_ERROR(monitor.Exit(), ErrorCodes::InvalidOperation);
        refused.Release();
        monitor.Enter();
        entered.Release();
        monitor.Exit();
    });
    EXPECT_TRUE(refused.WaitOne(Deadline));
    monitor.Exit();
    EXPECT_FALSE(entered.WaitOne(20));
    monitor.Exit();
    EXPECT_TRUE(entered.WaitOne(Deadline));
    JoinAll();
}

TEST_F(MonitorTest, RefusesThoseWhoDoNotOwnIt)
{
    EXPECT_ERROR(monitor.Exit(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(monitor.Wait(0), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(monitor.Pulse(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(monitor.PulseAll(), ErrorCodes::InvalidOperation);
    monitor.Enter();
    EXPECT_ERROR(monitor.Wait(-2), ErrorCodes::InvalidParameterValue);
    monitor.Exit();
}

TEST_F(MonitorTest, PulseWakesWhoHasWaitedLongestAndPulseAllTheRest)
{
    std::vector<int> woken;
    Semaphore wokenOne(0, 4);
    for (int index = 0; index < 4; ++index)
    {
        Semaphore entered(0, 1);
        Run([&, index] {
            monitor.Enter();
            monitor.Enter(); // the wait gives up both entries and takes both again
            entered.Release();
            EXPECT_TRUE(monitor.Wait(Deadline));
            woken.push_back(index);
            monitor.Exit();
            monitor.Exit();
            wokenOne.Release();
        });
        EXPECT_TRUE(entered.WaitOne(Deadline));
        monitor.Enter(); // possible once it waits
        monitor.Exit();
    }
    for (const int expected : {0, 1})
    {
        monitor.Enter();
        monitor.Pulse();
        monitor.Exit();
        EXPECT_TRUE(wokenOne.WaitOne(Deadline));
        EXPECT_EQ(woken.back(), expected);
    }
    monitor.Enter();
    monitor.PulseAll();
    EXPECT_EQ(woken.size(), 2u); // nobody gets in before this thread is out
    monitor.Exit();
    EXPECT_TRUE(wokenOne.WaitOne(Deadline) && wokenOne.WaitOne(Deadline));
    EXPECT_EQ(woken.size(), 4u);
}

TEST_F(MonitorTest, WaitEndsWithItsTimeAndForgetsTheWaiter)
{
    monitor.Enter();
    EXPECT_FALSE(monitor.Wait(0));
    EXPECT_FALSE(monitor.Wait(20));
    EXPECT_NO_THROW(monitor.Pulse());
    EXPECT_FALSE(monitor.Wait(0)); // a pulse that nobody waited for is lost
    monitor.Exit();
}

TEST_F(MonitorTest, PulseIsNotUsedUpByAThreadThatIsInterrupted)
{
    for (int round = 0; round < 100; ++round)
    {
        Semaphore entered(0, 2);
        Semaphore pulsed(0, 1);
        Thread interrupted(MakeLambda([&] {
            monitor.Enter();
            entered.Release();
            try
            {
                monitor.Wait(-1);
                pulsed.Release();
            }
            catch (const ThreadInterruptedException&)
            {
            }
            monitor.Exit();
        }));
        interrupted.Start();
        EXPECT_TRUE(entered.WaitOne(Deadline));
        monitor.Enter();
        monitor.Exit();
        Thread other(MakeLambda([&] {
            monitor.Enter();
            entered.Release();
            if (monitor.Wait(-1))
            {
                pulsed.Release();
            }
            monitor.Exit();
        }));
        other.Start();
        EXPECT_TRUE(entered.WaitOne(Deadline));

        monitor.Enter();
        interrupted.Interrupt();
        monitor.Pulse();
        monitor.Exit();
        EXPECT_TRUE(pulsed.WaitOne(Deadline));
        EXPECT_TRUE(interrupted.Join(Deadline));

        monitor.Enter();
        monitor.PulseAll();
        monitor.Exit();
        EXPECT_TRUE(other.Join(Deadline));
    }
}

TEST(LockTest, HoldsTheMonitorOrTheLockOfTheObject)
{
    Monitor monitor;
    const String object;
    const auto isMine = [&]() NFX_NO_THREAD_SAFETY_ANALYSIS {
        try
        {
            monitor.Pulse();
            Monitor::Pulse(object);
            return true;
        }
        catch (const InvalidOperationException&)
        {
            return false;
        }
    };
    {
        const Lock lock(monitor);
        EXPECT_FALSE(isMine());
        const Lock outer(object);
        {
            const Lock inner(object);
            EXPECT_TRUE(isMine());
        }
        EXPECT_TRUE(isMine());
    }
    EXPECT_FALSE(isMine());
    EXPECT_ERROR(Monitor::Exit(object), ErrorCodes::InvalidOperation);
}
} // namespace
} // namespace Nfx::System::Threading
