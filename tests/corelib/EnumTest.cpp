#include "system/Enum.h"

#include "support/ExpectError.h"
#include "system/ErrorCodes.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Threading/ThreadPriority.h"

#include <gtest/gtest.h>

namespace
{
using namespace Nfx::System;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::ThreadPriority;

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
} // namespace
