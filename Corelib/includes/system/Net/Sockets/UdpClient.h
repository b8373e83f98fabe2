#pragma once

#include "system/Array.h"
#include "system/Net/Sockets/Socket.h"

namespace Nfx::System::Net::Sockets
{
/// Sends and receives datagrams on a socket that was made and bound for it.
///
/// SetClient comes first, before other threads know of the client; from then on any thread may call the other
/// operations, several at once, as on the socket itself. Close leaves the socket in place, because another thread may
/// be blocked in it.
class UdpClient final : public Object
{
public:
    /// Without a socket.
    UdpClient() noexcept = default;
    UdpClient(const UdpClient&) = delete;
    UdpClient& operator=(const UdpClient&) = delete;

    void SetClient(const SmartPointer<Socket>& socket);

    /// Empty before SetClient.
    SmartPointer<Socket> Client() const;

    /// Sends the bytes as one datagram and returns the number sent.
    /// @throws NullReferenceException without a socket; otherwise as Socket::SendTo.
    Int32 Send(const Array<std::uint8_t>& bytes, const IPEndPoint& remoteEndPoint);
    Int32 Send(const std::uint8_t* bytes, std::int32_t count, const IPEndPoint& remoteEndPoint);

    /// Blocks for one datagram; see Socket::ReceiveFrom.
    /// @throws NullReferenceException without a socket; otherwise as Socket::ReceiveFrom.
    Int32 Receive(std::uint8_t* buffer, std::int32_t size, IPEndPoint& remoteEndPoint);

    /// Closes the socket, if there is one.
    void Close() noexcept;

private:
    Socket& RequireClient() const;

    SmartPointer<Socket> client; // constant after SetClient
};
} // namespace Nfx::System::Net::Sockets
