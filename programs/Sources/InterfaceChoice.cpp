#include "Programs/InterfaceChoice.h"

#include "Programs/WrongArgument.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

using Zent::Discovery::Inventory::IPv4;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Programs
{
namespace
{
/// What names of interfaces begin with behind which there are containers, virtual machines or tunnels.
constexpr std::string_view NamesLeftOut[] = {"docker",  "br-",  "virbr", "lxc", "veth", "cni",
                                             "flannel", "cali", "tun",   "tap", "wg"};

/// Why the interface takes no part even when the user names it; empty when it can.
std::string WhyUnusable(const NetworkInterface& interface)
{
    return !interface.IsUp ? "down" : interface.Addresses.empty() ? "without an IPv4 address" : "";
}

std::string WhyLeftOut(const NetworkInterface& interface)
{
    const bool hasName = std::ranges::any_of(
        NamesLeftOut, [&interface](std::string_view start) { return interface.Name.starts_with(start); });
    return interface.IsLoopback       ? "loopback"
           : interface.IsPointToPoint ? "point-to-point"
           : !interface.CanBroadcast  ? "cannot broadcast"
           : hasName                  ? "left out by its name"
                                      : "";
}

/// An address of this machine, and the interface that has it.
struct Own
{
    Network Address;
    const NetworkInterface& Interface;
};

/// The machine's own address that the text means; every address of the loopback network is one.
std::optional<Own> FindOwn(std::span<const NetworkInterface> interfaces, const std::string& text)
{
    const std::optional<IPv4> wanted = Network::ParseAddress(text);
    for (const NetworkInterface& interface : interfaces)
    {
        for (const Network& own : interface.Addresses)
        {
            if (wanted && (interface.IsLoopback ? own.HasHost(*wanted) : own.Address == *wanted))
            {
                return Own{{*wanted, own.PrefixLength}, interface};
            }
        }
    }
    return std::nullopt;
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
    {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}
} // namespace

InterfaceChoice::InterfaceChoice(std::span<const NetworkInterface> interfaces, const Wishes& wishes)
{
    if (!wishes.Addresses.empty())
    {
        TakeWished(interfaces, wishes.Addresses);
        return;
    }
    for (const NetworkInterface& interface : interfaces)
    {
        std::string reason = WhyUnusable(interface);
        if (!wishes.Names.empty() && std::ranges::find(wishes.Names, interface.Name) == wishes.Names.end())
        {
            reason = "not named";
        }
        else if (reason.empty() && wishes.Names.empty() && !wishes.All)
        {
            reason = WhyLeftOut(interface);
        }
        if (!reason.empty())
        {
            leftOut.push_back(interface.Name + " (" + reason + ")");
            continue;
        }
        addresses.insert(addresses.end(), interface.Addresses.begin(), interface.Addresses.end());
    }
}

void InterfaceChoice::Check(std::span<const NetworkInterface> interfaces, const Wishes& wishes)
{
    std::vector<std::string> names;
    std::vector<std::string> texts;
    for (const NetworkInterface& interface : interfaces)
    {
        names.push_back(interface.Name);
        std::ranges::transform(interface.Addresses, std::back_inserter(texts),
                               [](const Network& own) { return Network::TextOf(own.Address); });
    }
    for (const std::string& text : wishes.Addresses)
    {
        if (!FindOwn(interfaces, text))
        {
            throw WrongArgument(wishes.AddressSetting + (": \"" + text) + "\" is no address of this machine; it has " +
                                Joined(texts));
        }
    }
    for (const std::string& name : wishes.Names)
    {
        if (std::ranges::find(names, name) == names.end())
        {
            throw WrongArgument(wishes.NameSetting + (": \"" + name) + "\" is no interface of this machine; it has " +
                                Joined(names));
        }
    }
}

std::vector<std::string> InterfaceChoice::AddressTexts() const
{
    std::vector<std::string> texts;
    std::ranges::transform(addresses, std::back_inserter(texts),
                           [](const Network& each) { return Network::TextOf(each.Address); });
    return texts;
}

std::string InterfaceChoice::LeftOut() const
{
    return Joined(leftOut);
}

void InterfaceChoice::TakeWished(std::span<const NetworkInterface> interfaces, const std::vector<std::string>& wished)
{
    for (const std::string& text : wished)
    {
        const std::optional<Own> own = FindOwn(interfaces, text);
        const std::string reason = own ? WhyUnusable(own->Interface) : "no address of this machine any more";
        if (reason.empty())
        {
            addresses.push_back(own->Address);
        }
        else
        {
            leftOut.push_back(text + " (" + reason + ")");
        }
    }
}
} // namespace Zent::Discovery::Programs
