#include "system/Error.h"

#include "support/ExpectError.h"
#include "system/Exceptions.h"
#include "system/Net/Sockets/SocketException.h"

#include <gtest/gtest.h>

namespace
{
using namespace Nfx::System;
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketException;

TEST(ErrorTest, KnowsTheTextsAndKeepsTheGaps)
{
    EXPECT_EQ("None", Error().ToString());
    EXPECT_EQ("IO", Error(58).ToString());
    EXPECT_EQ("WaitHandleCannotBeOpened", Error(84).ToString());
    EXPECT_EQ("An invalid handle value was used", Error(ErrorCodes::Status(0xC0090001)).ToString());
    EXPECT_EQ("Overrun, the application is too speed", Error(ErrorCodes::Status(0xC0090205)).ToString());
    EXPECT_EQ("Incompatible version", Error(ErrorCodes::Status(0xC0094001)).ToString());
    for (const std::uint32_t gap : {85u, 0xC0090000u, 0xC009020Au, 0xC009FF01u, 0xFFFFFFFFu})
    {
        SCOPED_TRACE(gap);
        EXPECT_ERROR(Error(ErrorCodes::Status(gap)), ErrorCodes::InvalidParameterValue);
    }
}

TEST(ErrorTest, OrdersAndCopiesLikeANumber)
{
    const Error status(ErrorCodes::InvalidFormat);
    const Error none;
    EXPECT_EQ(-1, status.CompareTo(&none));
    EXPECT_EQ(1, none.CompareTo(&status));
    EXPECT_TRUE(Error(&status).Equals(&status));
    EXPECT_FALSE(none.Equals(&status));
    EXPECT_THROW(none.CompareTo(nullptr), ArgumentNullException);
    EXPECT_ERROR(Error(static_cast<const Error*>(nullptr)), ErrorCodes::ParameterIsNull);
}

template <class TException>
void ExpectDefaults(const char* name, const char* message, std::int32_t code)
{
    SCOPED_TRACE(name);
    const TException exception("tests/corelib", 7);
    EXPECT_EQ(message, exception.GetMessage());
    EXPECT_EQ(code, exception.GetError().Code());
    EXPECT_EQ(String(name) + ": " + message, exception.ToString());
    EXPECT_EQ("tests/corelib", exception.GetSourceFile());
    EXPECT_EQ(7, exception.GetSourceLine());
    EXPECT_EQ("of its own", TException("of its own", "tests/corelib", 7).GetMessage());
}

TEST(ExceptionTest, AClassGivesItsTextAndItsCode)
{
    ExpectDefaults<Exception>("Nfx::System::Exception", "Exception of type 'Nfx::System::Exception' was throw.", 1);
    ExpectDefaults<ArgumentNullException>("Nfx::System::ArgumentNullException", "Value cannot be null.", 9);
    ExpectDefaults<Threading::SemaphoreFullException>(
        "Nfx::System::Threading::SemaphoreFullException",
        "Adding the specified countto the semaphore wold cause it to exceed its maximum count.", 78);
}

TEST(ExceptionTest, ASocketExceptionNamesItsErrorOrGivesTheNumber)
{
    const String text = "Nfx::System::Net::Sockets::SocketException: The Socket operation failed.";
    EXPECT_EQ(text + " (ConnectionReset)", SocketException(SocketError::ConnectionReset, "x", 1).ToString());
    EXPECT_EQ(text + " (4711)", SocketException(4711, "x", 1).ToString());
    EXPECT_EQ(73, SocketException(SocketError::ConnectionReset, "x", 1).GetError().Code());
}

TEST(ExceptionTest, AnErrorOfItsOwnGoesBeforeTheDefault)
{
    const ArgumentException exception(ErrorCodes::InvalidFormat, "x", 1);
    EXPECT_EQ(ErrorCodes::InvalidFormat, exception.GetError().Code());
    EXPECT_EQ("Value does not fall within the expected range.", exception.GetMessage());
}
} // namespace
