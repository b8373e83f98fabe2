#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// A UDP socket of this machine, in as far as the system tells about it.
struct UdpSocket
{
    std::optional<std::uint32_t> Process; // the id of the process that has it; some systems hide those of other users
    std::string Program;                  // the name of that process; empty when it is unknown
    std::optional<std::uint32_t> User;    // the id of its owner, where users have one
    std::optional<std::uint64_t> Drops;   // datagrams that found its receive buffer full, where the system counts them
    bool IsOwn = false;                   // this process has it
};

/// The UDP sockets of this machine. Any thread.
class UdpSockets final
{
public:
    UdpSockets() = delete;

    /// To which devices send their messages.
    static constexpr std::uint16_t HostPort = 12001;

    /// Those that receive what is sent to the port. Empty when the system does not tell.
    static std::vector<UdpSocket> OnPort(std::uint16_t port);

    /// How many datagrams this process has lost at the port since its sockets were opened, because their receive
    /// buffers were full; nothing when the system does not count.
    static std::optional<std::uint64_t> OwnDrops(std::uint16_t port);

    /// Whether a host can open the port beside those that have it already. Opens a socket for a moment.
    static bool CanShare(std::uint16_t port);
};
} // namespace Zent::Discovery::Programs
