#include "system/Net/Sockets/Socket.h"

#include "Os/IOs.h"
#include "Os/ISocket.h"
#include "system/Net/Sockets/SocketException.h"

namespace Nfx::System::Net::Sockets
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Net/Sockets/Socket";

// What has ended, in the top bits of the state; below them the operations are counted.
constexpr std::uint32_t Closed = 0x80000000;
constexpr std::uint32_t ReceiveShutDown = 0x40000000;
constexpr std::uint32_t SendShutDown = 0x20000000;
constexpr std::uint32_t NeitherShutDown = 0;
constexpr std::uint32_t OneOperation = 1;
constexpr std::uint32_t OperationCount = SendShutDown - 1;

static_assert(Os::ISocket::AddressSize == SocketAddress::Size());

Os::ISocket& PlatformSocket()
{
    return Os::Platform().Socket();
}

std::intptr_t Open(const AddressFamily& family, const SocketType& type, const ProtocolType& protocol)
{
    if (family != AddressFamily::InterNetwork)
    {
        throw SocketException(SocketError::AddressFamilyNotSupported, SourceName, __LINE__);
    }
    if (type != SocketType::Dgram && type != SocketType::Raw)
    {
        throw SocketException(SocketError::SocketNotSupported, SourceName, __LINE__);
    }
    Os::ISocket::Handle handle = 0;
    const std::int32_t error = PlatformSocket().Open(type, protocol, handle);
    if (error != Os::ISocket::Success)
    {
        throw SocketException(error, SourceName, __LINE__);
    }
    return handle;
}

void CheckBuffer(const std::uint8_t* bytes, std::int32_t count)
{
    if (count < 0)
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
    if (bytes == nullptr && count > 0)
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
}

std::uint32_t EndedBy(const SocketShutdown& how)
{
    switch (how)
    {
    case SocketShutdown::Receive:
        return ReceiveShutDown;
    case SocketShutdown::Send:
        return SendShutDown;
    case SocketShutdown::Both:
        return ReceiveShutDown | SendShutDown;
    default:
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
}
} // namespace

/// One operation on the handle, which stays what it is for as long as this exists.
class Socket::Operation final
{
public:
    /// endedBy is the direction whose shutdown ends the operation.
    Operation(Socket& socket, std::uint32_t endedBy)
        : socket(socket)
        , endedBy(endedBy)
    {
        std::uint32_t seen = socket.state.load(std::memory_order_relaxed);
        do
        {
            ThrowWhenEnded(seen);
        } while (!socket.state.compare_exchange_weak(seen, seen + OneOperation, std::memory_order_acquire,
                                                     std::memory_order_relaxed));
    }

    ~Operation() { socket.Leave(); }

    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    /// Throws for a failure. Platforms report the end of a socket in many ways; the socket knows better.
    void Check(std::int32_t error) const
    {
        if (error != Os::ISocket::Success)
        {
            ThrowWhenEnded(socket.state.load(std::memory_order_acquire));
            throw SocketException(error, SourceName, __LINE__);
        }
    }

private:
    void ThrowWhenEnded(std::uint32_t seen) const
    {
        if ((seen & Closed) != 0)
        {
            throw ObjectClosedException(SourceName, __LINE__);
        }
        if ((seen & endedBy) != 0)
        {
            throw SocketException(SocketError::Shutdown, SourceName, __LINE__);
        }
    }

    Socket& socket;
    const std::uint32_t endedBy;
};

Socket::Socket(const AddressFamily& family, const SocketType& type, const ProtocolType& protocol)
    : handle(Open(family, type, protocol))
{
}

Socket::~Socket()
{
    Close();
}

void Socket::SetSocketOption(const SocketOptionLevel& level, const SocketOptionName& name, bool value)
{
    SetSocketOption(level, name, std::int32_t{value});
}

void Socket::SetSocketOption(const SocketOptionLevel& level, const SocketOptionName& name, std::int32_t value)
{
    const Operation operation(*this, NeitherShutDown);
    operation.Check(PlatformSocket().SetOption(handle, level, name, value));
}

void Socket::Bind(const SmartPointer<EndPoint>& localEndPoint)
{
    if (localEndPoint.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    const SocketAddress address = localEndPoint->Serialize();
    const Operation operation(*this, NeitherShutDown);
    operation.Check(PlatformSocket().Bind(handle, address.Data()));
}

void Socket::Connect(const IPEndPoint& remoteEndPoint)
{
    const SocketAddress address = remoteEndPoint.Serialize();
    const Operation operation(*this, NeitherShutDown);
    operation.Check(PlatformSocket().Connect(handle, address.Data()));
}

Int32 Socket::SendTo(const std::uint8_t* bytes, std::int32_t count, const IPEndPoint& remoteEndPoint)
{
    CheckBuffer(bytes, count);
    const SocketAddress address = remoteEndPoint.Serialize();
    std::int32_t sent = 0;
    const Operation operation(*this, SendShutDown);
    operation.Check(PlatformSocket().SendTo(handle, bytes, count, address.Data(), sent));
    return sent;
}

Int32 Socket::ReceiveFrom(std::uint8_t* buffer, std::int32_t size, IPEndPoint& remoteEndPoint)
{
    CheckBuffer(buffer, size);
    SocketAddress sender;
    std::int32_t received = 0;
    const Operation operation(*this, ReceiveShutDown);
    operation.Check(PlatformSocket().ReceiveFrom(handle, buffer, size, sender.Data(), received));
    remoteEndPoint = IPEndPoint(sender);
    return received;
}

Int32 Socket::Available()
{
    std::int32_t size = 0;
    const Operation operation(*this, NeitherShutDown);
    operation.Check(PlatformSocket().Available(handle, size));
    return size;
}

void Socket::Shutdown(const SocketShutdown& how)
{
    const std::uint32_t ended = EndedBy(how);
    const Operation operation(*this, NeitherShutDown);

    // Marked before the platform acts: whoever it wakes finds the reason.
    const std::uint32_t before = state.fetch_or(ended, std::memory_order_acq_rel);
    const std::int32_t error = PlatformSocket().Shutdown(handle, how);
    if (error != Os::ISocket::Success)
    {
        state.fetch_and(~(ended & ~before), std::memory_order_acq_rel);
    }
    operation.Check(error);
}

void Socket::Close() noexcept
{
    // The close is itself an operation, so that the handle is still there to be woken.
    std::uint32_t seen = state.load(std::memory_order_relaxed);
    do
    {
        if ((seen & Closed) != 0)
        {
            return;
        }
    } while (!state.compare_exchange_weak(seen, (seen | Closed) + OneOperation, std::memory_order_acq_rel,
                                          std::memory_order_relaxed));
    PlatformSocket().BeginClose(handle);
    Leave();
}

bool Socket::IsClosed() const noexcept
{
    return (state.load(std::memory_order_acquire) & Closed) != 0;
}

IPEndPoint Socket::LocalEndPoint()
{
    SocketAddress address;
    const Operation operation(*this, NeitherShutDown);
    operation.Check(PlatformSocket().LocalAddress(handle, address.Data()));
    return IPEndPoint(address);
}

IntPtr Socket::Handle() const noexcept
{
    return handle;
}

bool Socket::IsPortUsed(std::int32_t port) noexcept
{
    return PlatformSocket().IsPortUsed(port);
}

/// Ends an operation; the last one out of a closed socket gives the handle back.
void Socket::Leave() noexcept
{
    const std::uint32_t left = state.fetch_sub(OneOperation, std::memory_order_acq_rel) - OneOperation;
    if ((left & Closed) != 0 && (left & OperationCount) == 0)
    {
        PlatformSocket().EndClose(handle);
    }
}
} // namespace Nfx::System::Net::Sockets
