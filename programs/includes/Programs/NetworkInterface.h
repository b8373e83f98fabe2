#pragma once

#include "Inventory/Network.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// A network interface of this machine as the system shows it at one moment.
struct NetworkInterface
{
    std::string Name;                          // eth0; on Windows as its users see it: Ethernet 2
    std::vector<Inventory::Network> Addresses; // with the networks around them; none while it has no IPv4 address
    bool IsUp = true;                          // switched on, and something is connected to it
    bool CanBroadcast = true;
    bool IsLoopback = false;
    bool IsPointToPoint = false;
};
} // namespace Zent::Discovery::Programs
