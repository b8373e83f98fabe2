#include "system/Threading/Semaphore.h"

#include "corelib/Threading/ThrowsAt.h"
#include "support/ExpectError.h"
#include "support/RunOnThreads.h"
#include "system/Threading/AutoResetEvent.h"
#include "system/Threading/Mutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Semaphore";

TEST(SemaphoreTest, WaitsTakeWhatReleasesAdd)
{
    Semaphore semaphore(1, 5);
    EXPECT_EQ(semaphore.Release(3), 1);
    for (int taken = 0; taken < 4; ++taken)
    {
        EXPECT_TRUE(semaphore.WaitOne(0)) << taken;
    }
    EXPECT_FALSE(semaphore.WaitOne(0));
    EXPECT_FALSE(semaphore.WaitOne(20));
    EXPECT_EQ(semaphore.Release(), 0);
    EXPECT_TRUE(semaphore.WaitOne());
}

TEST(SemaphoreTest, ReleasePastTheMaximumThrowsAndAddsNothing)
{
    Semaphore semaphore(0, 1);
    EXPECT_EQ(semaphore.Release(), 0);
    EXPECT_TRUE(ThrowsAt<SemaphoreFullException>(SourceName, 108, [&] { semaphore.Release(); }));
    EXPECT_TRUE(semaphore.WaitOne(0));
    EXPECT_TRUE(ThrowsAt<SemaphoreFullException>(SourceName, 108, [&] { semaphore.Release(2); }));
    EXPECT_FALSE(semaphore.WaitOne(0));
    EXPECT_ERROR(semaphore.Release(0), ErrorCodes::ArgumentOutOfRange);
}

TEST(SemaphoreTest, RefusesCountsOutOfRange)
{
    for (const auto& [initial, maximum] : {std::pair{0, 0}, std::pair{0, -1}, std::pair{3, 2}, std::pair{-1, 2}})
    {
        EXPECT_TRUE(ThrowsAt<ArgumentException>(
            SourceName, 142, [initial = initial, maximum = maximum] { Semaphore semaphore(initial, maximum); }))
            << initial << " of " << maximum;
    }
}

TEST(SemaphoreTest, NamesHaveAtMost128Bytes)
{
    const Semaphore longest(0, 1, String(std::string(128, 'n')));
    EXPECT_TRUE(
        ThrowsAt<ArgumentException>(SourceName, 149, [] { Semaphore semaphore(0, 1, String(std::string(129, 'n'))); }));
    EXPECT_ERROR(Semaphore(0, 1, String("a\0b", 3)), ErrorCodes::IO);
    EXPECT_NO_THROW(Semaphore(0, 1, "\xC3\xA4 \xE4")); // not UTF-8
}

TEST(SemaphoreTest, SameNameMeansSameSemaphoreWhileOneIsOpen)
{
    const String name = "SemaphoreTest.shared";
    {
        Semaphore first(1, 2, name);
        Semaphore second(0, 7, name);
        Semaphore third(1, 1, name);
        EXPECT_TRUE(second.WaitOne(0));
        EXPECT_FALSE(third.WaitOne(0));
        EXPECT_EQ(third.Release(2), 0);
        EXPECT_ERROR(second.Release(), ErrorCodes::SemaphoreFull);
        first.Close();
        EXPECT_TRUE(second.WaitOne(0));

        EXPECT_ERROR(Mutex(false, name), ErrorCodes::IO);
        EXPECT_ERROR(EventWaitHandle(false, EventResetMode::AutoReset, name), ErrorCodes::IO);
    }
    EXPECT_NO_THROW(Mutex(false, name)); // the name is free again
}

TEST(SemaphoreTest, ClosedOneRefusesEverythingAndMayBeClosedAgain)
{
    Semaphore semaphore(1, 1);
    semaphore.Close();
    EXPECT_EQ(semaphore.GetHandle(), WaitHandle::InvalidHandle());
    const char waitSource[] = "Corelib/Sources/System/Threading/WaitHandle";
    EXPECT_TRUE(ThrowsAt<Exception>(waitSource, 96, [&] { semaphore.WaitOne(0); }));
    EXPECT_ERROR(semaphore.WaitOne(), ErrorCodes::InvalidHandle);
    EXPECT_TRUE(ThrowsAt<InvalidOperationException>(SourceName, 101, [&] { semaphore.Release(); }));
    semaphore.Close();

    Semaphore open(1, 1);
    EXPECT_TRUE(ThrowsAt<Exception>(waitSource, 98, [&] { open.WaitOne(-2); }));
    EXPECT_ERROR(open.WaitOne(-2), ErrorCodes::InvalidParameterValue);
    EXPECT_TRUE(open.WaitOne(0));
}

TEST(SemaphoreTest, EveryUnitIsTakenOnceWhoeverRacesForIt)
{
    constexpr int pairs = 3;
    constexpr int unitsPerThread = 6000;
    Semaphore units(0, pairs * unitsPerThread);
    std::atomic<int> taken{0};
    Tests::RunOnThreads(2 * pairs, [&](int number) {
        for (int unit = 0; unit < unitsPerThread; ++unit)
        {
            if (number % 2 != 0)
            {
                taken += units.WaitOne(unit % 2 == 0 ? -1 : 30000) ? 1 : 0;
            }
            else if (unit % 3 != 0)
            {
                units.Release(unit % 3);
            }
        }
    });
    EXPECT_EQ(taken, pairs * unitsPerThread);
    EXPECT_FALSE(units.WaitOne(0));
}
} // namespace
} // namespace Nfx::System::Threading
