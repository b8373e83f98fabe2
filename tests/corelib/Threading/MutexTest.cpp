#include "system/Threading/Mutex.h"

#include "support/ExpectError.h"
#include "support/LambdaDelegate.h"
#include "system/Threading/Thread.h"

#include <gtest/gtest.h>

#include <functional>

namespace Nfx::System::Threading
{
namespace
{
constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken

void RunElsewhere(std::function<void()> action)
{
    Thread thread(MakeLambda(std::move(action)));
    thread.Start();
    thread.Join();
}

TEST(MutexTest, BelongsToOneThreadThatMayEnterAgain)
{
    Mutex mutex(true);
    EXPECT_TRUE(mutex.WaitOne(0));
    const auto isFree = [&mutex] {
        bool free = false;
        RunElsewhere([&] {
            free = mutex.WaitOne(0);
            if (free)
            {
                mutex.ReleaseMutex();
            }
            else
            {
                EXPECT_ERROR(mutex.ReleaseMutex(), ErrorCodes::InvalidOperation);
            }
        });
        return free;
    };
    EXPECT_FALSE(isFree());
    mutex.ReleaseMutex();
    EXPECT_FALSE(isFree());
    mutex.ReleaseMutex();
    EXPECT_TRUE(isFree());
    EXPECT_ERROR(mutex.ReleaseMutex(), ErrorCodes::InvalidOperation);
    mutex.Close();
    EXPECT_ERROR(mutex.ReleaseMutex(), ErrorCodes::InvalidOperation);
}

TEST(MutexTest, GoesToTheNextWhenItsOwnerEnds)
{
    Mutex first;
    Mutex second;
    RunElsewhere([&] { EXPECT_TRUE(first.WaitOne(0) && first.WaitOne(0) && second.WaitOne(0)); });
    for (Mutex* mutex : {&first, &second})
    {
        EXPECT_TRUE(mutex->WaitOne(Deadline));
        mutex->ReleaseMutex();
        EXPECT_ERROR(mutex->ReleaseMutex(), ErrorCodes::InvalidOperation);
    }
}

TEST(MutexTest, OwnerMayCloseIt)
{
    const String name = "MutexTest.closed";
    {
        Mutex named(true, name);
        Mutex again(true, name); // exists already: asks for nothing
        named.ReleaseMutex();
        EXPECT_ERROR(named.ReleaseMutex(), ErrorCodes::InvalidOperation);
        EXPECT_TRUE(again.WaitOne(0));
    }
    Mutex anew(true, name);
    RunElsewhere([&] { EXPECT_FALSE(anew.WaitOne(0)); });
    anew.ReleaseMutex();
}
} // namespace
} // namespace Nfx::System::Threading
