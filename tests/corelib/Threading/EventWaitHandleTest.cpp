#include "system/Threading/EventWaitHandle.h"

#include "support/ExpectError.h"
#include "support/RunOnThreads.h"
#include "system/ErrorCodes.h"
#include "system/Threading/AutoResetEvent.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace Nfx::System::Threading
{
namespace
{
constexpr std::int32_t Deadline = 30000; // milliseconds; reached only when something is broken

TEST(EventWaitHandleTest, AutomaticOneLetsOneWaitThrough)
{
    AutoResetEvent event(true);
    EXPECT_TRUE(event.WaitOne(0));
    EXPECT_FALSE(event.WaitOne(0));
    event.Set();
    event.Set();
    EXPECT_TRUE(event.WaitOne());
    EXPECT_FALSE(event.WaitOne(10));
    event.Set();
    event.Reset();
    EXPECT_FALSE(event.WaitOne(0));
}

TEST(EventWaitHandleTest, ManualOneLetsAllThroughUntilItIsReset)
{
    EventWaitHandle event(false, EventResetMode::ManualReset);
    EXPECT_FALSE(event.WaitOne(0));
    Tests::RunOnThreads(4, [&event](int number) {
        if (number == 0)
        {
            event.Set();
        }
        EXPECT_TRUE(event.WaitOne(Deadline));
    });
    EXPECT_TRUE(event.WaitOne(0));
    event.Reset();
    EXPECT_FALSE(event.WaitOne(0));
}

TEST(EventWaitHandleTest, NamesAreShared)
{
    EXPECT_ERROR(EventWaitHandle(false, EventResetMode(2)), ErrorCodes::Argument);
    const String name = "EventWaitHandleTest.shared";
    EventWaitHandle first(true, EventResetMode::ManualReset, name);
    EventWaitHandle second(false, EventResetMode::AutoReset, name); // gets the first one's state and mode
    EXPECT_TRUE(second.WaitOne(0) && second.WaitOne(0));
    second.Reset();
    EXPECT_FALSE(first.WaitOne(0));
    EXPECT_ERROR(EventWaitHandle(false, EventResetMode::AutoReset, String(std::string(129, 'n'))),
                 ErrorCodes::Argument);
    first.Close();
    EXPECT_ERROR(first.Set(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(first.Reset(), ErrorCodes::InvalidOperation);
    EXPECT_ERROR(first.WaitOne(0), ErrorCodes::InvalidHandle);
}

TEST(EventWaitHandleTest, TimeoutIsWaitedForAndNoMore)
{
    using std::chrono::steady_clock;
    AutoResetEvent event(false);
    const auto start = steady_clock::now();
    EXPECT_FALSE(event.WaitOne(60));
    EXPECT_GE(steady_clock::now() - start, std::chrono::milliseconds(40)); // platforms tick by up to 16 ms
    EXPECT_LT(steady_clock::now() - start, std::chrono::milliseconds(Deadline));
}
} // namespace
} // namespace Nfx::System::Threading
