#include "system/Enum.h"

#include "support/ExpectError.h"
#include "system/ErrorCodes.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Net/AddressFamily.h"
#include "system/Net/Sockets/ProtocolType.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Net/Sockets/SocketFlags.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"
#include "system/Net/Sockets/SocketShutdown.h"
#include "system/Net/Sockets/SocketType.h"
#include "system/StringSplitOptions.h"
#include "system/Threading/EventResetMode.h"
#include "system/Threading/ThreadPriority.h"
#include "system/TypeCode.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace
{
using namespace Nfx::System;
using namespace Nfx::System::Net::Sockets;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Threading::EventResetMode;
using Nfx::System::Threading::ThreadPriority;

template <class T>
class EnumTest : public testing::Test
{
};

using Enumerations = testing::Types<AddressFamily,
                                    EventResetMode,
                                    LogStreamLevel,
                                    ProtocolType,
                                    SocketError,
                                    SocketFlags,
                                    SocketOptionLevel,
                                    SocketOptionName,
                                    SocketShutdown,
                                    SocketType,
                                    StringSplitOptions,
                                    ThreadPriority,
                                    TypeCode>;
TYPED_TEST_SUITE(EnumTest, Enumerations);

TYPED_TEST(EnumTest, NamesAreUniqueAndComeBackAsTheirValues)
{
    std::set<std::string> names;
    std::set<std::int32_t> values;
    for (const EnumName& row : TypeParam::Names)
    {
        EXPECT_TRUE(names.insert(row.Name).second) << row.Name;
        EXPECT_EQ(row.Value, std::int32_t{TypeParam::Parse(row.Name)}) << row.Name;
        if (values.insert(row.Value).second) // option names share values between levels: the first one is the text
        {
            EXPECT_EQ(row.Name, TypeParam(row.Value).ToString());
        }
    }
}

TEST(EnumTextTest, AValueWithoutANameIsItsNumberAndTextsAreExact)
{
    EXPECT_EQ("7", LogStreamLevel(7).ToString());
    EXPECT_FALSE(LogStreamLevel::IsDefined(7));
    for (const char* text : {"", "debug", "Debug ", "3"})
    {
        SCOPED_TRACE(text);
        EXPECT_ERROR(LogStreamLevel::Parse(text), ErrorCodes::InvalidFormat);
    }
    const LogStreamLevel debug(LogStreamLevel::Debug);
    const ThreadPriority three(3);
    EXPECT_FALSE(debug.Equals(&three));
}
} // namespace
