#pragma once

#include "Inventory/Network.h"

#include <cstddef>
#include <optional>
#include <unordered_set>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Addresses to be asked one by one.
class AddressSweep final
{
public:
    using Addresses = std::unordered_set<IPv4>;

    /// Larger networks are not swept.
    static constexpr int ShortestPrefix = 21;

    /// All addresses of the networks around this machine's own: first in the blocks of 256 that hold most of the known
    /// ones, and there next to them. Without own, known, network and broadcast addresses.
    static AddressSweep OfNetworks(const std::vector<Network>& own, const Addresses& known);

    /// The addresses of a list that are not known, in its order.
    /// @throws std::invalid_argument when the list has more than that many.
    static AddressSweep OfList(const std::vector<Network>& list, const Addresses& known, std::size_t maximum);

    /// Whether the address lies in a network that is swept.
    static bool Covers(const std::vector<Network>& own, IPv4 address);

    /// The next one that is not known by now; nothing at the end.
    std::optional<IPv4> Next(const Addresses& known);

    bool IsAtEnd() const;

private:
    std::vector<IPv4> addresses;
    std::size_t position = 0;
};
} // namespace Zent::Discovery::Inventory
