#pragma once

#include "ILocalAddressing.h"
#include "Request.h"
#include "system/Net/Sockets/Socket.h"

#include <array>
#include <memory>
#include <optional>

namespace Zent::Discovery::Simulator
{
/// A UDP port of this machine, shared by all devices: hears what is sent to any local address and to all, tells which,
/// and sends from any local address to the peers' port. A socket for each device could not do that: under Wine a socket
/// bound to a loopback address other than 127.0.0.1, such as 127.0.0.10, ends up on 0.0.0.0. So there is one socket,
/// and the destination address of each datagram decides which device is meant.
///
/// Unless it is told to, it does not share the port with other programs: the system hands all unicasts to only one of
/// the sockets.
///
/// One thread may receive while another sends.
class LocalPort final
{
public:
    /// @throws std::runtime_error when another program has the port; Nfx::System::Net::Sockets::SocketException when it
    /// cannot be bound for another reason.
    LocalPort(std::int32_t port, std::int32_t peerPort, bool sharesPort);

    /// Waits for a datagram, but only for a fraction of a second; nothing when none came.
    /// @throws std::system_error when the system refuses.
    std::optional<Request> Receive();

    /// Sends text from the local address to the peers' port at the target. What is sent from a loopback address stays
    /// on this machine, whatever the target.
    /// @throws std::system_error when the system refuses; Nfx::System::Net::Sockets::SocketException.
    void Send(const Nfx::System::String& text,
              const Nfx::System::Net::IPAddress& from,
              const Nfx::System::Net::IPAddress& target);

private:
    const std::int32_t peerPort;
    Nfx::System::Net::Sockets::Socket socket;
    const std::unique_ptr<ILocalAddressing> addressing;
    std::array<char, 65536> buffer; // of the receiving thread
};
} // namespace Zent::Discovery::Simulator
