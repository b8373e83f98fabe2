#include "Os/Posix/SocketErrorPosix.h"

#include "system/Net/Sockets/SocketError.h"

#include <cerrno>

namespace Nfx::Os
{
namespace
{
using Nfx::System::Net::Sockets::SocketError;

struct Row
{
    int Errno;
    std::int32_t Error;
};

constexpr Row Rows[] = {
    {EACCES, SocketError::AccessDenied},
    {EADDRINUSE, SocketError::AddressAlreadyInUse},
    {EADDRNOTAVAIL, SocketError::AddressNotAvailable},
    {EAFNOSUPPORT, SocketError::AddressFamilyNotSupported},
    {EAGAIN, SocketError::WouldBlock},
    {EALREADY, SocketError::AlreadyInProgress},
    {EBADF, SocketError::NotSocket},
    {ECANCELED, SocketError::OperationAborted},
    {ECONNABORTED, SocketError::ConnectionAborted},
    {ECONNREFUSED, SocketError::ConnectionRefused},
    {ECONNRESET, SocketError::ConnectionReset},
    {EDESTADDRREQ, SocketError::DestinationAddressRequired},
    {EFAULT, SocketError::Fault},
    {EHOSTDOWN, SocketError::HostDown},
    {EHOSTUNREACH, SocketError::HostUnreachable},
    {EINPROGRESS, SocketError::InProgress},
    {EINTR, SocketError::Interrupted},
    {EINVAL, SocketError::InvalidArgument},
    {EISCONN, SocketError::IsConnected},
    {EMFILE, SocketError::TooManyOpenSockets},
    {EMSGSIZE, SocketError::MessageSize},
    {ENETDOWN, SocketError::NetworkDown},
    {ENETRESET, SocketError::NetworkReset},
    {ENETUNREACH, SocketError::NetworkUnreachable},
    {ENFILE, SocketError::TooManyOpenSockets},
    {ENOBUFS, SocketError::NoBufferSpaceAvailable},
    {ENODEV, SocketError::AddressNotAvailable},
    {ENOMEM, SocketError::NoBufferSpaceAvailable},
    {ENOPROTOOPT, SocketError::ProtocolOption},
    {ENOTCONN, SocketError::NotConnected},
    {ENOTSOCK, SocketError::NotSocket},
    {EOPNOTSUPP, SocketError::OperationNotSupported},
    {EPERM, SocketError::AccessDenied}, // also what a firewall's refusal of a send looks like
    {EPFNOSUPPORT, SocketError::ProtocolFamilyNotSupported},
    {EPIPE, SocketError::Shutdown},
    {EPROTONOSUPPORT, SocketError::ProtocolNotSupported},
    {EPROTOTYPE, SocketError::ProtocolType},
    {ESHUTDOWN, SocketError::Shutdown},
    {ESOCKTNOSUPPORT, SocketError::SocketNotSupported},
    {ETIMEDOUT, SocketError::TimedOut},
};
} // namespace

std::int32_t SocketErrorPosix::FromErrno(int error) noexcept
{
    for (const Row& row : Rows)
    {
        if (row.Errno == error)
        {
            return row.Error;
        }
    }
    return error;
}

std::int32_t SocketErrorPosix::FromTransferErrno(int error) noexcept
{
    return error == ECONNREFUSED ? std::int32_t{SocketError::ConnectionReset} : FromErrno(error);
}
} // namespace Nfx::Os
