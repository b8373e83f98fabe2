#include "Doctor/Check.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <utility>

using Zent::Discovery::Inventory::IPv4;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console::Doctor
{
namespace
{
std::string Counted(std::uint64_t count, const std::string& one, const std::string& several)
{
    return count == 1 ? "1 " + one : std::to_string(count) + " " + several;
}

std::string Joined(const auto& texts)
{
    std::string joined;
    for (const std::string& text : texts)
    {
        joined.append(joined.empty() ? "" : ", ").append(text);
    }
    return joined;
}

std::string NameOf(const HeardDevice& device)
{
    return device.HostName + " (" + device.IPAddress + ")";
}

std::string NameOf(const Programs::UdpSocket& holder)
{
    if (holder.Process)
    {
        return (holder.Program.empty() ? "a program" : holder.Program) + " (process " +
               std::to_string(*holder.Process) + ")";
    }
    return holder.User ? "a program of the user with the id " + std::to_string(*holder.User) : "another program";
}

std::string NamesOf(const std::vector<Programs::UdpSocket>& holders)
{
    std::set<std::string> names;
    for (const Programs::UdpSocket& holder : holders)
    {
        names.insert(NameOf(holder));
    }
    return names.empty() ? "another program" : Joined(names);
}

std::optional<Symptom> FindNoInterface(const Observations& observations)
{
    if (observations.HasInterface)
    {
        return std::nullopt;
    }
    return Symptom{observations.LeftOut.empty() ? "" : "; left out: " + observations.LeftOut};
}

std::optional<Symptom> FindNoRoute(const Observations& observations)
{
    return observations.HasBroadcastRoute ? std::nullopt : std::optional(Symptom{});
}

std::optional<Symptom> FindPortTaken(const Observations& observations)
{
    return observations.IsPortTaken ? std::optional(Symptom{NamesOf(observations.PortHolders)}) : std::nullopt;
}

std::optional<Symptom> FindPortShared(const Observations& observations)
{
    const bool isLogged = observations.Search && observations.Search->Log.SharesPort;
    if (observations.PortHolders.empty() && !isLogged)
    {
        return std::nullopt;
    }
    return Symptom{NamesOf(observations.PortHolders)};
}

std::optional<Symptom> FindFirewall(const Observations& observations)
{
    const FirewallState& firewall = observations.Firewall;
    switch (firewall.Verdict)
    {
    case FirewallState::Verdicts::Dropped:
        return Symptom{"is dropped " + firewall.Reason, Severity::Warning, firewall.Commands};
    case FirewallState::Verdicts::Unclear:
        return Symptom{"may be dropped " + firewall.Reason, Severity::Note, firewall.Commands};
    case FirewallState::Verdicts::LetIn:
        break;
    }
    return std::nullopt;
}

std::optional<Symptom> FindAnswersLost(const Observations& observations)
{
    const std::uint64_t drops = observations.Search->BufferDrops.value_or(0);
    const std::size_t oversize = observations.Search->Log.Oversize;
    std::vector<std::string> causes;
    if (drops != 0)
    {
        causes.push_back(Counted(drops, "datagram", "datagrams") + " found the receive buffer full");
    }
    if (oversize != 0)
    {
        causes.push_back(Counted(oversize, "datagram was", "datagrams were") + " too large for the first try");
    }
    return causes.empty() ? std::nullopt : std::optional(Symptom{Joined(causes)});
}

std::optional<Symptom> FindForeignSubNet(const Observations& observations)
{
    std::vector<std::string> foreign;
    for (const HeardDevice& device : observations.Search->Devices)
    {
        const std::optional<IPv4> address = Network::ParseAddress(device.IPAddress);
        if (address && std::ranges::none_of(observations.SubNets,
                                            [&address](const Network& subNet) { return subNet.Contains(*address); }))
        {
            foreign.push_back(NameOf(device));
        }
    }
    if (foreign.empty())
    {
        return std::nullopt;
    }
    return Symptom{foreign.size() == 1 ? "The address of " + foreign.front() + " lies"
                                       : "The addresses of " + foreign.front() + " and " +
                                             Counted(foreign.size() - 1, "other device", "other devices") + " lie"};
}

/// " from 10.0.0.5, 10.0.0.6"; empty when none is known.
std::string From(const std::set<std::string>& addresses)
{
    constexpr std::size_t Shown = 4;
    std::vector<std::string> names;
    std::ranges::copy_n(addresses.begin(), static_cast<std::ptrdiff_t>(std::min(addresses.size(), Shown)),
                        std::back_inserter(names));
    if (addresses.size() > Shown)
    {
        names.push_back(Counted(addresses.size() - Shown, "other", "others"));
    }
    return names.empty() ? "" : " from " + Joined(names);
}

std::optional<Symptom> FindVersionDropped(const Observations& observations)
{
    const Programs::LogSummary& log = observations.Search->Log;
    if (log.VersionDropped == 0)
    {
        return std::nullopt;
    }
    return Symptom{Counted(log.VersionDropped, "message was", "messages were") + " dropped" + From(log.VersionSenders) +
                   (log.Versions.empty() ? "" : ": version " + Joined(log.Versions))};
}

std::optional<Symptom> FindFormatDropped(const Observations& observations)
{
    const Programs::LogSummary& log = observations.Search->Log;
    if (log.FormatDropped == 0)
    {
        return std::nullopt;
    }
    return Symptom{Counted(log.FormatDropped, "datagram was", "datagrams were") + " dropped" + From(log.FormatSenders) +
                   (log.Defect.empty() ? "" : ", the first one for \"" + log.Defect + '"')};
}

std::optional<Symptom> FindQueueFull(const Observations& observations)
{
    const std::size_t count = observations.Search->Log.QueueFull;
    return count == 0 ? std::nullopt : std::optional(Symptom{Counted(count, "entry was", "entries were")});
}

/// Values of one member that occur together with several of another, each as a conflict for people.
template <class TKey, class TValue>
void FindClashes(const std::set<HeardDevice>& devices,
                 const char* what,
                 TKey HeardDevice::*key,
                 TValue HeardDevice::*value,
                 const char* several,
                 std::vector<std::string>& conflicts)
{
    std::map<TKey, std::set<TValue>> values;
    for (const HeardDevice& device : devices)
    {
        if (!(device.*key).empty() && !(device.*value).empty())
        {
            values[device.*key].insert(device.*value);
        }
    }
    for (const auto& [name, owners] : values)
    {
        if (owners.size() > 1)
        {
            conflicts.push_back(what + name + " belongs to " + std::to_string(owners.size()) + several);
        }
    }
}

std::optional<Symptom> FindConflict(const Observations& observations)
{
    const std::set<HeardDevice>& devices = observations.Search->Devices;
    std::vector<std::string> conflicts;
    FindClashes(devices, "the MAC address ", &HeardDevice::MACAddress, &HeardDevice::SerialNumber, " serial numbers",
                conflicts);
    FindClashes(devices, "the IP address ", &HeardDevice::IPAddress, &HeardDevice::MACAddress, " devices", conflicts);
    FindClashes(devices, "the name ", &HeardDevice::HostName, &HeardDevice::MACAddress, " devices", conflicts);
    return conflicts.empty() ? std::nullopt : std::optional(Symptom{Joined(conflicts)});
}

std::optional<Symptom> FindNoRealTime(const Observations& observations)
{
    return observations.Search->Log.IsRealTimeRefused ? std::optional(Symptom{}) : std::nullopt;
}

std::optional<Symptom> FindNobodyAnswers(const Observations& observations)
{
    if (!observations.Search->Devices.empty())
    {
        return std::nullopt;
    }
    char seconds[32];
    const auto [end, error] =
        std::to_chars(seconds, std::end(seconds), observations.Search->Seconds, std::chars_format::general, 3);
    return Symptom{std::string(seconds, end)};
}

const std::array Checks = {
    Check{"no-interface",
          "Network interfaces",
          Severity::Error,
          "No network interface can take part in a search{}.",
          "Nothing can be found.",
          "ip -brief address",
          "ipconfig",
          {},
          false,
          FindNoInterface},
    Check{"no-route",
          "Route for broadcasts",
          Severity::Warning,
          "No default route leads a broadcast anywhere.",
          "Hosts that give InitBroadcastProvider no address find nothing and restart at each request.",
          "ip route add default dev eth0",
          "route print",
          {"no-interface"},
          false,
          FindNoRoute},
    Check{"port-taken",
          "UDP port 12001",
          Severity::Error,
          "UDP port 12001 is taken by {}, which does not share it.",
          "No host on this machine can start; StartServer returns 73.",
          "sudo ss -ulpn sport = :12001",
          "netstat -ano -p UDP",
          {},
          false,
          FindPortTaken},
    Check{"port-shared",
          "Other hosts on this machine",
          Severity::Warning,
          "UDP port 12001 is shared with {}.",
          "Answers reach only one of the hosts, whichever has asked.",
          "sudo ss -ulpn sport = :12001",
          "netstat -ano -p UDP",
          {"port-taken"},
          false,
          FindPortShared},
    Check{"firewall",
          "Firewall",
          Severity::Warning,
          "What comes to UDP port 12001 {}.",
          "Answers of devices do not reach the hosts on this machine.",
          "sudo nft list ruleset",
          "netsh advfirewall show currentprofile",
          {},
          false,
          FindFirewall},
    Check{"version-dropped",
          "Protocol versions",
          Severity::Warning,
          "{}, older than the minimum version allows.",
          "These devices are never reported.",
          "discovery-console doctor --min-version 0.0",
          "discovery-console doctor --min-version 0.0",
          {"no-interface", "port-taken"},
          true,
          FindVersionDropped},
    Check{"format-dropped",
          "Format of messages",
          Severity::Warning,
          "{}.",
          "What sends them, a device or another program, is not reported.",
          "sudo tshark -V -f \"udp port 12001\"",
          "tshark -V -f \"udp port 12001\"",
          {"no-interface", "port-taken"},
          true,
          FindFormatDropped},
    Check{"answers-lost",
          "Receive buffer",
          Severity::Warning,
          "Answers were lost on this machine: {}.",
          "A single request misses devices; a search asks again until none is missing.",
          "discovery-console discover",
          "discovery-console discover",
          {"no-interface", "port-taken"},
          true,
          FindAnswersLost},
    Check{"queue-full",
          "Queues of the library",
          Severity::Warning,
          "The library could not keep up: {} refused by its queues.",
          "Messages are lost, usually because a callback takes too long.",
          "discovery-console discover",
          "discovery-console discover",
          {"no-interface", "port-taken"},
          true,
          FindQueueFull},
    Check{"foreign-subnet",
          "Addresses of devices",
          Severity::Warning,
          "{} in none of this machine's subnets.",
          "Nothing can be sent to such a device alone, and other programs cannot reach it.",
          "discovery-console configure FILE",
          "discovery-console configure FILE",
          {"no-interface", "port-taken"},
          true,
          FindForeignSubNet},
    Check{"conflict",
          "Conflicts between devices",
          Severity::Warning,
          "Devices contradict each other: {}.",
          "Requests may reach another device than is meant.",
          "discovery-console discover --sort ip",
          "discovery-console discover --sort ip",
          {"no-interface", "port-taken"},
          true,
          FindConflict},
    Check{"no-realtime",
          "Priority of the receiver",
          Severity::Note,
          "The system refuses the receiver the real-time priority.",
          "When hundreds of devices answer at once, more answers are lost.",
          "sudo setcap cap_sys_nice+ep \"$(command -v discovery-console)\"",
          "",
          {"port-taken"},
          true,
          FindNoRealTime},
    Check{"nobody-answers",
          "Answers",
          Severity::Error,
          "No device has answered within {} s.",
          "Look for devices without power, another VLAN, or a switch or device whose firewall drops "
          "UDP ports 12000 and 12001.",
          "sudo tshark -f \"udp portrange 12000-12001\"",
          "tshark -f \"udp portrange 12000-12001\"",
          {"no-interface", "port-taken", "port-shared", "firewall", "version-dropped", "format-dropped"},
          true,
          FindNobodyAnswers}};
} // namespace

std::string_view NameOf(Severity severity)
{
    switch (severity)
    {
    case Severity::Note:
        return "note";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        return "error";
    case Severity::Ok:
        break;
    }
    return "ok";
}

std::span<const Check> Check::All()
{
    return Checks;
}

const Check* Check::Find(std::string_view code)
{
    const auto* const found =
        std::ranges::find(Checks, code, [](const Check& check) { return std::string_view(check.Code); });
    return found == Checks.end() ? nullptr : found;
}
} // namespace Zent::Discovery::Console::Doctor
