#pragma once

#include "Discovery/IDiscoverySocket.h"
#include "system/Net/Sockets/UdpClient.h"

#include <atomic>

namespace Zent::Discovery
{
/// A discovery socket over a UDP client: bound with address reuse, a receive buffer of 65536 bytes and leave to
/// broadcast. May be used from several threads; the socket below keeps its handle until the last operation is over.
class DiscoverySocketUdpClient final : public IDiscoverySocket
{
public:
    /// Binds to localPort on every local address; sends go to remotePort.
    /// @throws SocketException when the socket cannot be created, configured or bound.
    DiscoverySocketUdpClient(const Nfx::System::Int32& localPort, const Nfx::System::Int32& remotePort);

    /// Binds to localPort on one local address.
    DiscoverySocketUdpClient(const Nfx::System::Int32& localPort,
                             const Nfx::System::Int32& remotePort,
                             const Nfx::System::Net::IPAddress& localAddress);

    Nfx::System::SmartPointer<Nfx::System::Net::Sockets::Socket> GetSocket() override;
    Nfx::System::Int32 Receive(std::uint8_t* buffer,
                               Nfx::System::Int32 size,
                               Nfx::System::Net::IPEndPoint& remoteEndPoint) override;
    Nfx::System::Int32 Send(const std::uint8_t* bytes,
                            Nfx::System::Int32 count,
                            const Nfx::System::Net::IPAddress& targetAddress) override;
    Nfx::System::Int32 Send(const Nfx::System::Array<std::uint8_t>& bytes,
                            const Nfx::System::Net::IPAddress& targetAddress) override;
    Nfx::System::Int32 Broadcast(const std::uint8_t* bytes, Nfx::System::Int32 count) override;
    Nfx::System::Int32 Broadcast(const Nfx::System::Array<std::uint8_t>& bytes) override;
    void Shutdown() override;
    Nfx::System::Boolean IsShutDown() override;
    void Close() override;
    Nfx::System::Boolean HasShutDown() override;
    Nfx::System::Boolean IsClosed() override;
    Nfx::System::Int32 GetLocalPort() override;
    Nfx::System::Int32 GetRemotePort() override;

private:
    const Nfx::System::Int32 localPort;
    const Nfx::System::Int32 remotePort;
    const Nfx::System::SmartPointer<Nfx::System::Net::Sockets::UdpClient> udpClient;
    std::atomic<bool> isShutDown{false}; // set by Shutdown, read by any thread
    std::atomic<bool> isClosed{false};   // set by Close, read by any thread
};
} // namespace Zent::Discovery
