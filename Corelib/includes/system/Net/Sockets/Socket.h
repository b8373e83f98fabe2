#pragma once

#include "system/IntPtr.h"
#include "system/Net/IPEndPoint.h"
#include "system/Net/Sockets/ProtocolType.h"
#include "system/Net/Sockets/SocketError.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"
#include "system/Net/Sockets/SocketShutdown.h"
#include "system/Net/Sockets/SocketType.h"

#include <atomic>
#include <cstdint>

namespace Nfx::System::Net::Sockets
{
/// Owns one datagram socket of the platform.
///
/// Any thread may call any operation, several at once: one thread may block in ReceiveFrom while others send and
/// another shuts down and closes. Nothing is locked, and no operation waits for another one. The platform's handle is
/// given back when the last operation on it has returned, so its number never means something else under a late one.
/// To end a receiver: Shutdown, Close, then join its thread. The socket must outlive every call on it.
///
/// Failures: an operation that starts after Close, or that was running then and fails, throws ObjectClosedException;
/// else, in a direction that Shutdown has ended, SocketException with SocketError::Shutdown; else SocketException with
/// the platform's reason.
class Socket final : public Object
{
public:
    /// Opens a socket of the platform. Programs that the process starts do not inherit it.
    /// @throws SocketException when the platform has none to give; AddressFamilyNotSupported for another family than
    /// InterNetwork, SocketNotSupported for another type than Dgram and Raw.
    Socket(const AddressFamily& family, const SocketType& type, const ProtocolType& protocol);

    /// Closes.
    ~Socket() override;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    /// Timeouts are milliseconds, sizes are bytes.
    /// @throws SocketException, with ProtocolOption for an option that the platform does not have.
    /// @throws ObjectClosedException after Close.
    void SetSocketOption(const SocketOptionLevel& level, const SocketOptionName& name, bool value);
    void SetSocketOption(const SocketOptionLevel& level, const SocketOptionName& name, std::int32_t value);

    /// Port 0 takes one that is free.
    /// @throws ArgumentNullException when there is no end point; SocketException; ObjectClosedException after Close.
    void Bind(const SmartPointer<EndPoint>& localEndPoint);

    /// From now on the socket receives from this peer only; it may still send to any.
    /// @throws SocketException; ObjectClosedException after Close.
    void Connect(const IPEndPoint& remoteEndPoint);

    /// Sends one datagram and returns its size. Allocates nothing unless it fails.
    /// @throws ArgumentNullException for null bytes, ArgumentOutOfRangeException for a negative count, and as above.
    Int32 SendTo(const std::uint8_t* bytes, std::int32_t count, const IPEndPoint& remoteEndPoint);

    /// Blocks for one datagram, writes it to the buffer and its sender over remoteEndPoint, and returns its size.
    /// Allocates nothing unless it fails; remoteEndPoint is left alone then.
    /// @throws ArgumentNullException for a null buffer, ArgumentOutOfRangeException for a negative size.
    /// @throws SocketException: MessageSize when the datagram is longer than size, which loses it; ConnectionReset when
    /// the peer of an earlier datagram reported its port closed; TimedOut when a receive timeout is set and passes;
    /// others as above.
    Int32 ReceiveFrom(std::uint8_t* buffer, std::int32_t size, IPEndPoint& remoteEndPoint);

    /// The size in bytes of the datagram that waits to be received; 0 also when none does.
    /// @throws SocketException; ObjectClosedException after Close.
    Int32 Available();

    /// Ends a direction or both for good. Wakes a receiver that blocks in it.
    /// @throws SocketException; ObjectClosedException after Close.
    void Shutdown(const SocketShutdown& how);

    /// Wakes blocked operations; the last one to return gives the handle back. The second call does nothing.
    void Close() noexcept;

    bool IsClosed() const noexcept;

    /// The address and port that the socket is bound to.
    /// @throws SocketException; ObjectClosedException after Close.
    IPEndPoint LocalEndPoint();

    /// The platform's own number of the socket; it means nothing after Close.
    IntPtr Handle() const noexcept;

    /// True when any datagram socket of this machine is bound to the port, on whatever address. False also where the
    /// platform does not tell, as on Windows.
    static bool IsPortUsed(std::int32_t port) noexcept;

private:
    class Operation;

    void Leave() noexcept;

    const std::intptr_t handle; // constant after construction

    // The number of operations on the handle, and on top of it a bit for each thing that has ended. In one word, so
    // that exactly one thread, the last one out of a closed socket, gives the handle back.
    std::atomic<std::uint32_t> state{0}; // written by every operation
};
} // namespace Nfx::System::Net::Sockets
