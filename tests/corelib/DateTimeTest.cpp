#include "system/DateTime.h"

#include "system/Boolean.h"
#include "system/String.h"

#include <gtest/gtest.h>

using namespace Nfx::System;

TEST(DateTimeTest, HasALongAndAShortText)
{
    const DateTime time(2026, 3, 5, 14, 7, 9, 42);
    EXPECT_EQ(time.ToString(), "05/03/2026 14:07:09.042");
    EXPECT_EQ(time.ToShortString(), "5/03/2026 14:07:09");
}

TEST(DateTimeTest, MillisecondsCountUpwardsBefore1970Too)
{
    EXPECT_TRUE(DateTime::FromUtc(-1).ToString().View().ends_with(":59.999"));
    EXPECT_TRUE(DateTime::FromUtc(1'999'999).ToString().View().ends_with(":01.999"));
}
