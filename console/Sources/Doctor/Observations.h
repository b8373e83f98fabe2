#pragma once

#include "Inventory/Network.h"
#include "Programs/LogReader.h"
#include "Programs/UdpSockets.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
/// What the firewall does with datagrams from anybody to the port of hosts.
struct FirewallState
{
    enum class Verdicts
    {
        LetIn, // or there is no firewall
        Dropped,
        Unclear
    };

    Verdicts Verdict = Verdicts::LetIn;
    std::string Reason;                // of the other two, such as "by the rules of ufw"
    std::vector<std::string> Commands; // that let them in on this system
};

/// One of the things that a device has said of itself. All texts are as the device sent them.
struct HeardDevice
{
    std::string HostName;
    std::string SerialNumber;
    std::string MACAddress; // the lowest of its interfaces: a device that answers on several is one
    std::string IPAddress;  // that it sends from

    std::strong_ordering operator<=>(const HeardDevice&) const = default;
};

/// What a search has shown.
struct SearchResult
{
    double Seconds = 0;
    std::set<HeardDevice> Devices;
    std::optional<std::uint64_t> BufferDrops; // nothing where the system does not count them
    Programs::LogSummary Log;
    std::string LogText;   // of the library
    std::string Documents; // of the devices, a line each
};

/// All that is known when the checks judge. Collecting it takes a system; judging it does not.
struct Observations
{
    enum class Systems
    {
        Linux,
        Windows
    };

    Systems System = Systems::Linux;
    bool HasInterface = true;                     // that takes part in a search
    std::string LeftOut;                          // the other interfaces, with the reasons
    std::vector<Inventory::Network> SubNets;      // of this machine
    bool HasBroadcastRoute = true;                // for hosts that name no address to send from
    bool IsPortTaken = false;                     // by a socket that does not share it
    std::vector<Programs::UdpSocket> PortHolders; // of other processes
    FirewallState Firewall;
    std::optional<SearchResult> Search; // nothing when there was none
};
} // namespace Zent::Discovery::Console::Doctor
