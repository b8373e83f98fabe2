#include "Discovery/MACAddress.h"

#include "support/ExpectError.h"
#include "system/Boolean.h"
#include "system/ErrorCodes.h"
#include "system/Int32.h"
#include "system/String.h"

#include <gtest/gtest.h>

#include <string>

using Nfx::System::String;
using Zent::Discovery::MACAddress;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
TEST(MACAddressTest, ReadsSixHexadecimalPartsAndWritesThemInUppercase)
{
    EXPECT_EQ(MACAddress::Parse("00:1a:2B:3c:4d:fF").ToString(), "00:1A:2B:3C:4D:FF");
    EXPECT_EQ(MACAddress::Parse("0:1:a:F:10:2").ToString(), "00:01:0A:0F:10:02");
    EXPECT_EQ(MACAddress().ToString(), "00:00:00:00:00:00");
}

TEST(MACAddressTest, RefusesEverythingElse)
{
    std::string manyParts = "00";
    for (int part = 0; part < 19000; ++part)
    {
        manyParts += ":00";
    }
    for (const char* const text :
         {"", ":", "00:11:22:33:44", "00:11:22:33:44:", "00::22:33:44:55", "00:11:22:33:44:55:66", "00:11:22:33:44:GG",
          "000:11:22:33:44:55", "0x0:11:22:33:44:55", "+1:11:22:33:44:55", "-1:11:22:33:44:55", " 0:11:22:33:44:55",
          "00:11:22:33:44:55 ", "001122334455"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(MACAddress::Parse(text), ErrorCodes::InvalidFormat);
    }
    EXPECT_ERROR(MACAddress::Parse(String(manyParts)), ErrorCodes::InvalidFormat);
    EXPECT_ERROR(MACAddress::Parse(String("00:11:22:33:44:55\0", 18)), ErrorCodes::InvalidFormat);
}

TEST(MACAddressTest, ComparesByItsBytes)
{
    const MACAddress low = MACAddress::Parse("00:00:00:00:00:FF");
    const MACAddress high = MACAddress::Parse("00:00:00:00:01:00");
    const auto clone = low.Clone();
    EXPECT_TRUE(low.Equals(&*clone));
    EXPECT_EQ(low.GetHashCode(), clone->GetHashCode());
    EXPECT_EQ(low.CompareTo(&*clone), 0);
    EXPECT_LT(low.CompareTo(&high), 0);
    EXPECT_GT(high.CompareTo(&low), 0);

    const String text = "00:00:00:00:00:FF";
    EXPECT_FALSE(low.Equals(&high));
    EXPECT_FALSE(low.Equals(&text));
    EXPECT_FALSE(low.Equals(nullptr));
    EXPECT_ERROR(low.CompareTo(nullptr), ErrorCodes::ArgumentNull);
    EXPECT_ERROR(low.CompareTo(&text), ErrorCodes::Argument);
}
} // namespace
