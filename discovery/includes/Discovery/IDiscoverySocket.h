#pragma once

#include "system/Array.h"
#include "system/Int32.h"
#include "system/Interface.h"
#include "system/Net/IPAddress.h"
#include "system/Net/IPEndPoint.h"
#include "system/Net/Sockets/Socket.h"
#include "system/SmartPointer.h"

#include <cstdint>

namespace Zent::Discovery
{
/// The UDP end point through which the discovery service talks to devices. One thread may block in Receive while
/// others send and another one shuts the socket down and closes it.
/// Failures are SocketException, or ObjectClosedException once the socket is closed.
class IDiscoverySocket : public Nfx::System::Object, public Nfx::System::Interface
{
public:
    virtual Nfx::System::SmartPointer<Nfx::System::Net::Sockets::Socket> GetSocket() = 0;

    /// Waits for one datagram; writes at most size bytes to buffer and the sender to remoteEndPoint.
    /// Returns the number of bytes; 0 for an empty datagram.
    virtual Nfx::System::Int32 Receive(std::uint8_t* buffer,
                                       Nfx::System::Int32 size,
                                       Nfx::System::Net::IPEndPoint& remoteEndPoint) = 0;

    /// Sends the first count bytes to the remote port at an address; returns the number of bytes sent.
    virtual Nfx::System::Int32 Send(const std::uint8_t* bytes,
                                    Nfx::System::Int32 count,
                                    const Nfx::System::Net::IPAddress& targetAddress) = 0;

    /// Sends the whole array to the remote port at an address; returns the number of bytes sent.
    virtual Nfx::System::Int32 Send(const Nfx::System::Array<std::uint8_t>& bytes,
                                    const Nfx::System::Net::IPAddress& targetAddress) = 0;

    /// Sends the first count bytes to the limited broadcast address; returns the number of bytes sent.
    virtual Nfx::System::Int32 Broadcast(const std::uint8_t* bytes, Nfx::System::Int32 count) = 0;

    /// Sends the whole array to the limited broadcast address; returns the number of bytes sent.
    virtual Nfx::System::Int32 Broadcast(const Nfx::System::Array<std::uint8_t>& bytes) = 0;

    /// Ends sending and receiving and wakes a blocked Receive. A second call does nothing.
    virtual void Shutdown() = 0;

    virtual Nfx::System::Boolean IsShutDown() = 0;

    /// Releases the socket once the last operation on it has returned; wakes a blocked Receive. A second call does
    /// nothing.
    virtual void Close() = 0;

    /// The same as IsShutDown; both questions have always had the same answer.
    virtual Nfx::System::Boolean HasShutDown() = 0;

    virtual Nfx::System::Boolean IsClosed() = 0;

    virtual Nfx::System::Int32 GetLocalPort() = 0;

    virtual Nfx::System::Int32 GetRemotePort() = 0;
};
} // namespace Zent::Discovery
