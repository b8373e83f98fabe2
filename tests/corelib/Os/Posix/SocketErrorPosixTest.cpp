#include "Os/Posix/SocketErrorPosix.h"

#include "system/Net/Sockets/SocketError.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace Nfx::Os
{
namespace
{
using Nfx::System::Net::Sockets::SocketError;

TEST(SocketErrorPosixTest, EveryErrnoOfASocketCallHasTheNumberOfItsName)
{
    for (const int error :
         {EACCES,       EADDRINUSE,   EADDRNOTAVAIL, EAFNOSUPPORT,    EAGAIN,      EALREADY,     EBADF,
          ECONNABORTED, ECONNREFUSED, ECONNRESET,    EDESTADDRREQ,    EFAULT,      EHOSTUNREACH, EINPROGRESS,
          EINTR,        EINVAL,       EISCONN,       EMFILE,          EMSGSIZE,    ENETDOWN,     ENETRESET,
          ENETUNREACH,  ENFILE,       ENOBUFS,       ENOMEM,          ENOPROTOOPT, ENOTCONN,     ENOTSOCK,
          EOPNOTSUPP,   EPERM,        EPIPE,         EPROTONOSUPPORT, EPROTOTYPE,  ETIMEDOUT,    EWOULDBLOCK})
    {
        EXPECT_TRUE(SocketError::IsDefined(SocketErrorPosix::FromErrno(error))) << error;
    }
    EXPECT_EQ(SocketErrorPosix::FromErrno(ENOTBLK), ENOTBLK);
}

TEST(SocketErrorPosixTest, NumbersAreThoseThatTheOtherPlatformReports)
{
    const struct
    {
        int Errno;
        std::int32_t Error;
    } rows[] = {{EINTR, 10004},      {EPERM, 10013},         {EACCES, 10013},       {EMFILE, 10024},
                {ENFILE, 10024},     {EBADF, 10038},         {EMSGSIZE, 10040},     {ENOPROTOOPT, 10042},
                {EADDRINUSE, 10048}, {EADDRNOTAVAIL, 10049}, {ENETDOWN, 10050},     {ENETUNREACH, 10051},
                {ENOBUFS, 10055},    {EPIPE, 10058},         {ECONNREFUSED, 10061}, {EHOSTUNREACH, 10065}};

    for (const auto& row : rows)
    {
        EXPECT_EQ(SocketErrorPosix::FromErrno(row.Errno), row.Error) << row.Errno;
    }
}

TEST(SocketErrorPosixTest, RefusalOfATransferIsThePeersResetOnly)
{
    EXPECT_EQ(SocketErrorPosix::FromTransferErrno(ECONNREFUSED), SocketError::ConnectionReset);
    EXPECT_EQ(SocketErrorPosix::FromTransferErrno(EPERM), SocketError::AccessDenied);
}
} // namespace
} // namespace Nfx::Os
