#include "Inventory/AddressSweep.h"

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <unordered_map>

namespace Zent::Discovery::Inventory
{
namespace
{
bool IsSwept(const Network& network)
{
    return network.PrefixLength >= AddressSweep::ShortestPrefix && network.PrefixLength <= 30;
}

IPv4 BlockOf(IPv4 address)
{
    return address >> 8;
}

/// Calls action(address) for each host's address of the network; the last one may be the highest of all numbers.
template <class TAction>
void ForEachHost(const Network& network, TAction&& action)
{
    for (std::uint64_t address = network.Lowest(); address <= network.Highest(); ++address)
    {
        if (network.HasHost(static_cast<IPv4>(address)))
        {
            action(static_cast<IPv4>(address));
        }
    }
}

/// How far it is to the next known address.
IPv4 DistanceTo(const std::set<IPv4>& known, IPv4 address)
{
    const auto above = known.lower_bound(address);
    IPv4 distance = std::numeric_limits<IPv4>::max();
    if (above != known.end())
    {
        distance = *above - address;
    }
    if (above != known.begin())
    {
        distance = std::min(distance, address - *std::prev(above));
    }
    return distance;
}
} // namespace

AddressSweep AddressSweep::OfNetworks(const std::vector<Network>& own, const Addresses& known)
{
    std::unordered_map<IPv4, std::size_t> knownInBlock;
    for (const IPv4 address : known)
    {
        ++knownInBlock[BlockOf(address)];
    }
    const std::set<IPv4> sorted(known.begin(), known.end());
    std::set<std::tuple<std::size_t, IPv4, IPv4, IPv4>> inOrder; // by known ones in the block, block, distance, address
    for (const Network& network : own)
    {
        if (IsSwept(network))
        {
            ForEachHost(network, [&](IPv4 address) {
                const auto block = knownInBlock.find(BlockOf(address));
                const std::size_t count = block == knownInBlock.end() ? 0 : block->second;
                inOrder.emplace(256 - std::min<std::size_t>(count, 256), BlockOf(address), DistanceTo(sorted, address),
                                address);
            });
        }
    }
    AddressSweep sweep;
    for (const auto& [count, block, distance, address] : inOrder)
    {
        const bool isOwn = std::ranges::find(own, address, &Network::Address) != own.end();
        if (!isOwn && !known.contains(address))
        {
            sweep.addresses.push_back(address);
        }
    }
    return sweep;
}

AddressSweep AddressSweep::OfList(const std::vector<Network>& list, const Addresses& known, std::size_t maximum)
{
    AddressSweep sweep;
    std::uint64_t count = 0;
    for (const Network& network : list)
    {
        count += std::uint64_t{network.Highest()} - network.Lowest() + 1;
        if (count > maximum)
        {
            throw std::invalid_argument("a list of more than " + std::to_string(maximum) +
                                        " addresses cannot be asked one by one: " + Network::TextOf(network.Address) +
                                        "/" + std::to_string(network.PrefixLength) + " is too much");
        }
        ForEachHost(network, [&](IPv4 address) {
            if (!known.contains(address))
            {
                sweep.addresses.push_back(address);
            }
        });
    }
    return sweep;
}

bool AddressSweep::Covers(const std::vector<Network>& own, IPv4 address)
{
    return std::ranges::any_of(
        own, [address](const Network& network) { return IsSwept(network) && network.Contains(address); });
}

std::optional<IPv4> AddressSweep::Next(const Addresses& known)
{
    while (position < addresses.size())
    {
        const IPv4 address = addresses[position++];
        if (!known.contains(address))
        {
            return address;
        }
    }
    return std::nullopt;
}

bool AddressSweep::IsAtEnd() const
{
    return position == addresses.size();
}
} // namespace Zent::Discovery::Inventory
