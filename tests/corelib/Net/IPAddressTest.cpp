#include "system/Net/IPAddress.h"

#include "support/ExpectError.h"
#include "system/Exceptions.h"

#include <gtest/gtest.h>

namespace Nfx::System::Net
{
namespace
{
TEST(IPAddressTest, FirstOctetIsTheLeastSignificantByte)
{
    EXPECT_EQ(IPAddress(0x0100007F).ToString(), "127.0.0.1");
    EXPECT_EQ(IPAddress(0xFFFFFFFF).ToString(), "255.255.255.255");
    EXPECT_EQ(IPAddress().ToString(), "0.0.0.0");
    EXPECT_EQ(IPAddress::Parse("192.168.1.20").Value(), 0x1401A8C0);
}

TEST(IPAddressTest, OnlyTheLow32BitsCount)
{
    EXPECT_EQ(IPAddress(-1), IPAddress::Broadcast());
    EXPECT_EQ(IPAddress(0x7700000000), IPAddress::Any());
    EXPECT_EQ(IPAddress(-1).Value(), 0xFFFFFFFF);
}

TEST(IPAddressTest, ReadsFourDecimalNumbersWhateverTheirZeros)
{
    for (const char* const text : {"10.1.2.30", "010.001.02.030", "10.1.02.030"})
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(IPAddress::Parse(text).ToString(), "10.1.2.30");
    }
    EXPECT_EQ(IPAddress::Parse("255.255.255.255"), IPAddress::Broadcast());
}

TEST(IPAddressTest, RefusesEverythingElse)
{
    for (const char* const text :
         {"",        "1",          "1.2.3",     "1.2.3.",    ".1.2.3",     "1..2.3",      "1.2.3.4.",   "1.2.3.4.5",
          "1.2.3.x", "1.2.3.256",  "1.2.3.999", "1.2.3.-4",  "1.2.3.+4",   " 1.2.3.4",    "1.2.3.4 ",   "1.2. 3.4",
          "1,2,3,4", "1.2.3.0004", "0x1.2.3.4", "1.2.3.0x4", "4294967295", "1.2.3.4\n",   "1.2.3.4/24", "::1",
          "1.2.3.٤", "1.2.3.1e1",  "a.b.c.d",   "....",      "1.2.3.4:80", "1111.1.1.11", "localhost"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(IPAddress::Parse(text), ErrorCodes::InvalidFormat);
    }
    EXPECT_ERROR(IPAddress::Parse(String("1.2.3.4\0", 8)), ErrorCodes::InvalidFormat);
}
} // namespace
} // namespace Nfx::System::Net
