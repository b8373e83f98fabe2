#include "Os/Posix/SocketErrorPosix.h"

#include "system/Net/Sockets/SocketError.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace Nfx::Os
{
namespace
{
using Nfx::System::Net::Sockets::SocketError;

TEST(SocketErrorPosixTest, NumbersAreThoseThatTheOtherPlatformReports)
{
    EXPECT_EQ(SocketErrorPosix::FromErrno(EINTR), 10004);
    EXPECT_EQ(SocketErrorPosix::FromErrno(EPERM), SocketErrorPosix::FromErrno(EACCES));
    EXPECT_EQ(SocketErrorPosix::FromErrno(ENFILE), SocketErrorPosix::FromErrno(EMFILE));
    EXPECT_EQ(SocketErrorPosix::FromErrno(EHOSTUNREACH), 10065);
    EXPECT_EQ(SocketErrorPosix::FromErrno(ENOTBLK), ENOTBLK);
    EXPECT_EQ(SocketErrorPosix::FromErrno(ECONNREFUSED), SocketError::ConnectionRefused);
    EXPECT_EQ(SocketErrorPosix::FromTransferErrno(ECONNREFUSED), SocketError::ConnectionReset);
    EXPECT_EQ(SocketErrorPosix::FromTransferErrno(EPERM), SocketError::AccessDenied);
}
} // namespace
} // namespace Nfx::Os
