#include "Os/Posix/SocketPosix.h"

#include "Os/Posix/SocketErrorPosix.h"
#include "Os/Posix/SocketOptionPosix.h"
#include "Os/Posix/UdpTablePosix.h"
#include "system/Net/AddressFamily.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"
#include "system/Net/Sockets/SocketShutdown.h"
#include "system/Net/Sockets/SocketType.h"

#include <cerrno>
#include <cstddef>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Nfx::Os
{
namespace
{
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketShutdown;
using Nfx::System::Net::Sockets::SocketType;

// What lets types, directions and addresses pass as they are.
static_assert(int{SOCK_DGRAM} == int{SocketType::Dgram} && int{SOCK_RAW} == int{SocketType::Raw});
static_assert(int{SHUT_RD} == int{SocketShutdown::Receive} && int{SHUT_WR} == int{SocketShutdown::Send} &&
              int{SHUT_RDWR} == int{SocketShutdown::Both});
static_assert(AF_INET == AddressFamily::InterNetwork);
static_assert(sizeof(sockaddr_in) == ISocket::AddressSize && sizeof(sa_family_t) == 2);
static_assert(offsetof(sockaddr_in, sin_port) == 2 && offsetof(sockaddr_in, sin_addr) == 4);

int Descriptor(ISocket::Handle handle) noexcept
{
    return static_cast<int>(handle);
}

const sockaddr* Address(const std::uint8_t* address) noexcept
{
    return reinterpret_cast<const sockaddr*>(address);
}

std::int32_t Result(bool succeeded) noexcept
{
    return succeeded ? ISocket::Success : SocketErrorPosix::FromErrno(errno);
}

/// Blocks on a socket that somebody made non-blocking: our callers rely on that. Returns 0 when another try is
/// due. A receive would not tell that such a socket is shut down, and the wait would end at once for ever; so it is
/// asked.
std::int32_t AwaitReady(int descriptor, short event) noexcept
{
    const auto events = static_cast<short>(event == POLLIN ? POLLIN | POLLRDHUP : event);
    pollfd wait = {.fd = descriptor, .events = events, .revents = 0};
    const bool shutDown =
        ::poll(&wait, 1, SocketOptionPosix::HeartBeatMilliseconds) > 0 && (wait.revents & POLLRDHUP) != 0;
    return shutDown && event == POLLIN ? std::int32_t{SocketError::Shutdown} : ISocket::Success;
}

/// What to do about a transfer that failed with errno: 0 repeats it, any other number is the error to report.
/// event is that of its direction.
std::int32_t AfterFailure(int descriptor, short event) noexcept
{
    const int error = errno;
    if (error == EINTR)
    {
        return ISocket::Success;
    }
    if (error != EAGAIN)
    {
        return SocketErrorPosix::FromTransferErrno(error);
    }
    const bool hasTimeout = event == POLLIN && SocketOptionPosix::HasReceiveTimeout(descriptor);
    return hasTimeout ? std::int32_t{SocketError::TimedOut} : AwaitReady(descriptor, event);
}
} // namespace

std::int32_t SocketPosix::Open(std::int32_t type, std::int32_t protocol, Handle& handle) noexcept
{
    const int descriptor = ::socket(AF_INET, type | SOCK_CLOEXEC, protocol);
    if (descriptor < 0)
    {
        return SocketErrorPosix::FromErrno(errno);
    }
    SocketOptionPosix::Set(descriptor, SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, 0);
    handle = descriptor;
    return Success;
}

std::int32_t SocketPosix::SetOption(Handle handle, std::int32_t level, std::int32_t name, std::int32_t value) noexcept
{
    return Result(SocketOptionPosix::Set(Descriptor(handle), level, name, value));
}

std::int32_t SocketPosix::Bind(Handle handle, const std::uint8_t* address) noexcept
{
    return Result(::bind(Descriptor(handle), Address(address), AddressSize) == 0);
}

std::int32_t SocketPosix::Connect(Handle handle, const std::uint8_t* address) noexcept
{
    return Result(::connect(Descriptor(handle), Address(address), AddressSize) == 0);
}

std::int32_t SocketPosix::LocalAddress(Handle handle, std::uint8_t* address) noexcept
{
    socklen_t addressSize = AddressSize;
    return Result(::getsockname(Descriptor(handle), reinterpret_cast<sockaddr*>(address), &addressSize) == 0);
}

std::int32_t SocketPosix::SendTo(Handle handle,
                                 const std::uint8_t* bytes,
                                 std::int32_t count,
                                 const std::uint8_t* address,
                                 std::int32_t& sent) noexcept
{
    const int descriptor = Descriptor(handle);
    for (;;)
    {
        const ssize_t result =
            ::sendto(descriptor, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL, Address(address), AddressSize);
        if (result >= 0)
        {
            sent = static_cast<std::int32_t>(result);
            return Success;
        }
        const std::int32_t error = AfterFailure(descriptor, POLLOUT);
        if (error != Success)
        {
            return error;
        }
    }
}

std::int32_t SocketPosix::ReceiveFrom(
    Handle handle, std::uint8_t* buffer, std::int32_t size, std::uint8_t* address, std::int32_t& received) noexcept
{
    const int descriptor = Descriptor(handle);
    for (;;)
    {
        socklen_t addressSize = AddressSize;
        // MSG_TRUNC: the size of the whole datagram, whatever fits the buffer.
        const ssize_t result = ::recvfrom(descriptor, buffer, static_cast<std::size_t>(size), MSG_TRUNC,
                                          reinterpret_cast<sockaddr*>(address), &addressSize);
        if (result > size)
        {
            return SocketError::MessageSize;
        }
        if (result >= 0)
        {
            // Every datagram has a sender, the empty one too; a socket that is shut down returns without one, at once
            // and for ever.
            received = static_cast<std::int32_t>(result);
            return addressSize == 0 ? std::int32_t{SocketError::Shutdown} : Success;
        }
        const std::int32_t error = AfterFailure(descriptor, POLLIN);
        if (error != Success)
        {
            return error;
        }
    }
}

std::int32_t SocketPosix::Available(Handle handle, std::int32_t& size) noexcept
{
    int bytes = 0;
    const bool succeeded = ::ioctl(Descriptor(handle), FIONREAD, &bytes) == 0;
    size = bytes;
    return Result(succeeded);
}

std::int32_t SocketPosix::Shutdown(Handle handle, std::int32_t how) noexcept
{
    // A socket without a peer is not connected, says the system, and shuts it down all the same.
    return Result(::shutdown(Descriptor(handle), how) == 0 || errno == ENOTCONN);
}

void SocketPosix::BeginClose(Handle handle) noexcept
{
    ::shutdown(Descriptor(handle), SHUT_RDWR);
}

void SocketPosix::EndClose(Handle handle) noexcept
{
    // The descriptor is gone even when this reports a failure: closing it again could hit another thread's file.
    ::close(Descriptor(handle));
}

bool SocketPosix::IsPortUsed(std::int32_t port) noexcept
{
    return UdpTablePosix::Has("/proc/thread-self/net/udp", port) ||
           UdpTablePosix::Has("/proc/thread-self/net/udp6", port); // may take IPv4 datagrams, too
}
} // namespace Nfx::Os
