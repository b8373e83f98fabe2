#include "support/ExpectError.h"
#include "system/Boolean.h"
#include "system/Byte.h"
#include "system/Collections/Generic/List.h"
#include "system/Double.h"
#include "system/Int64.h"
#include "system/IntPtr.h"
#include "system/String.h"
#include "system/StringSplitOptions.h"
#include "system/Type.h"
#include "system/UInt64.h"
#include "system/Version.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
using namespace Nfx::System;
using Nfx::System::Collections::Generic::List;

TEST(VersionTest, ReadsTwoToFourNumbersAndWritesThemPlain)
{
    for (const auto& [text, written] : {std::pair("01.00.18", "1.0.18"), std::pair("1.0", "1.0"),
                                        std::pair("0.0.0.0", "0.0.0.0"), std::pair("2147483647.0", "2147483647.0")})
    {
        EXPECT_EQ(written, Version::Parse(text).ToString()) << text;
    }
    EXPECT_EQ("0.0", Version().ToString());
    for (const char* text : {"", "1", "1.", ".1", "1..2", "1.2.3.4.5", "1.2.", " 1.2", "1.2 ", "1.+2", "1.-2", "-1.2",
                             "1.2147483648", "0x1.2", "1,2", "1.2.99999999999999999999"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(Version::Parse(text), ErrorCodes::InvalidFormat);
    }
}

TEST(VersionTest, TakesAnUndefinedComponentForLowerThanZero)
{
    const Version rising[] = {Version(),         Version(0, 0, 0),     Version(1, 0), Version(1, 0, 0),
                              Version(1, 0, 18), Version(1, 0, 18, 0), Version(1, 1), Version(2, 0)};
    for (std::size_t index = 1; index < std::size(rising); ++index)
    {
        EXPECT_LT(rising[index - 1], rising[index]) << index;
        EXPECT_FALSE(rising[index - 1] == rising[index]) << index;
        EXPECT_TRUE(rising[index].Equals(&rising[index]) && !rising[index].Equals(&rising[index - 1])) << index;
    }
    EXPECT_EQ(Version(1, 0, 18), Version::Parse("01.00.18"));
}

TEST(BooleanTest, ReadsItsTwoTextsExactly)
{
    EXPECT_TRUE(Boolean::Parse("True"));
    EXPECT_FALSE(Boolean::Parse("False"));
    EXPECT_EQ("True", Boolean(true).ToString());
    for (const char* text : {"", "true", "FALSE", "1", " True", "True "})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(Boolean::Parse(text), ErrorCodes::InvalidFormat);
    }
}

TEST(NumberTest, WritesAndReadsTheWholeRange)
{
    EXPECT_EQ("-2147483648", Int32(std::numeric_limits<std::int32_t>::min()).ToString());
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), Int64::Parse("-9223372036854775808"));
    EXPECT_EQ("18446744073709551615", UInt64(std::numeric_limits<std::uint64_t>::max()).ToString());
    EXPECT_EQ("255", Byte::Parse("255").ToString());
    EXPECT_EQ("0.1", Double(0.1).ToString());
    for (const char* const text : {"nan", "inf", "1e999"})
    {
        EXPECT_ERROR(Double::Parse(text), ErrorCodes::InvalidFormat);
    }
    EXPECT_EQ(sizeof(void*) == 4 ? "0x0000BEEF" : "0x000000000000BEEF", IntPtr(0xBEEF).ToString());
    for (const char* text : {"", " 1", "1 ", "+1", "0x1", "1.0", "2147483648"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(Int32::Parse(text), ErrorCodes::InvalidFormat);
    }
    EXPECT_ERROR(Byte::Parse("256"), ErrorCodes::InvalidFormat);
    EXPECT_ERROR(Byte::Parse("-1"), ErrorCodes::InvalidFormat);
}

TEST(StringTest, SplitsWithAndWithoutEmptyParts)
{
    const List<String> all = String(":a::b:").Split(':', StringSplitOptions::None);
    ASSERT_EQ(5, all.Count());
    EXPECT_EQ("a", all[1]);
    EXPECT_TRUE(all[4].IsEmpty());
    const List<String> filled = String(":a::b:").Split(':', StringSplitOptions::RemoveEmptyEntries);
    ASSERT_EQ(2, filled.Count());
    EXPECT_EQ("b", filled[1]);
    EXPECT_EQ(1, String().Split(':', StringSplitOptions::None).Count());
    EXPECT_EQ(0, String().Split(':', StringSplitOptions::RemoveEmptyEntries).Count());
}

TEST(StringTest, RefusesNullAndQuotesWithALimit)
{
    EXPECT_ERROR(String(static_cast<const char*>(nullptr)), ErrorCodes::ArgumentNull);
    EXPECT_EQ("\"short\"", String("short").Quoted());
    EXPECT_EQ(64u + 5u, String(std::string(1000, 'x')).Quoted().Length());
}

TEST(TypeTest, NamesClassesInFull)
{
    EXPECT_EQ("Nfx::System::String", String().GetType().ToString());
    EXPECT_EQ("Nfx::System::Collections::Generic::List<Nfx::System::String>", List<String>().ToString());
    const Int64 one(1);
    const Int64 two(2);
    const Boolean other;
    const Type type = two.GetType();
    const Type otherType = other.GetType();
    EXPECT_TRUE(one.GetType().Equals(&type));
    EXPECT_FALSE(one.GetType().Equals(&otherType));
}
} // namespace
