#pragma once

#include "system/Net/IPAddress.h"
#include "system/Net/IPEndPoint.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace Nfx::System::Net::Sockets
{
class Socket;
}

namespace Zent::Discovery::Simulator
{
/// What the platform's sockets can do beyond the framework's: tell and choose the local address of a datagram.
class ILocalAddressing
{
public:
    virtual ~ILocalAddressing() = default;

    /// Receives one datagram and returns its size; nothing when the socket's receive timeout passes or the datagram is
    /// of no use.
    /// @throws std::system_error when the system refuses.
    virtual std::optional<std::size_t> Receive(std::span<char> buffer,
                                               Nfx::System::Net::IPAddress& sender,
                                               Nfx::System::Net::IPAddress& destination) = 0;

    /// Sends one datagram.
    /// @throws std::system_error when the system refuses, for instance because from is not an address of this machine;
    /// Nfx::System::Net::Sockets::SocketException.
    virtual void Send(std::string_view bytes,
                      const Nfx::System::Net::IPAddress& from,
                      const Nfx::System::Net::IPEndPoint& target) = 0;

    /// For a socket with the option PacketInformation, which must outlive the result.
    static std::unique_ptr<ILocalAddressing> Create(Nfx::System::Net::Sockets::Socket& socket);
};
} // namespace Zent::Discovery::Simulator
