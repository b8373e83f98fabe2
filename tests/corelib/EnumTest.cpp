#include "system/Enum.h"

#include "support/ExpectError.h"
#include "system/ErrorCodes.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Threading/ThreadPriority.h"
#include "system/Threading/ThreadState.h"

#include <gtest/gtest.h>

namespace
{
using namespace Nfx::System;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::ThreadPriority;
using Nfx::System::Threading::ThreadState;

TEST(EnumTest, AValueWithoutANameIsItsNumberAndTextsAreExact)
{
    EXPECT_EQ("Debug", LogStreamLevel(3).ToString());
    EXPECT_EQ(3, LogStreamLevel::Parse("Debug"));
    EXPECT_EQ("7", LogStreamLevel(7).ToString());
    EXPECT_FALSE(LogStreamLevel::IsDefined(7));
    for (const char* text : {"", "debug", "Debug ", "3"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(LogStreamLevel::Parse(text), ErrorCodes::InvalidFormat);
    }
    const LogStreamLevel debug(LogStreamLevel::Debug);
    const LogStreamLevel same(LogStreamLevel::Debug);
    const ThreadPriority three(3);
    EXPECT_TRUE(debug.Equals(&same));
    EXPECT_FALSE(debug.Equals(&three));
    EXPECT_EQ("AboveNormal", three.ToString());
}

TEST(EnumTest, FlagsAreNamedInAscendingOrderAndNoOtherTextIsRead)
{
    const std::pair<std::int32_t, const char*> cases[] = {
        {ThreadState::Running, "Running"},
        {ThreadState::Aborted, "Aborted"},
        {ThreadState::WaitSleepJoin | ThreadState::Background, "Background, WaitSleepJoin"},
        {ThreadState::AbortRequested | ThreadState::StopRequested | ThreadState::Suspended,
         "StopRequested, Suspended, AbortRequested"}};
    for (const auto& [value, text] : cases)
    {
        EXPECT_EQ(ThreadState(value).ToString(), text);
        EXPECT_EQ(ThreadState::Parse(text), value);
    }
    EXPECT_EQ(ThreadState(512 + 16).ToString(), "528"); // not all of it has a name
    for (const char* text : {"", "running", "Background,WaitSleepJoin", "Background, ", ", Background", "4"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(ThreadState::Parse(text), ErrorCodes::InvalidFormat);
    }
}
} // namespace
