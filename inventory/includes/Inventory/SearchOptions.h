#pragma once

#include "Inventory/Network.h"
#include "Inventory/Time.h"

#include <cstddef>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// How to search.
struct SearchOptions
{
    Time Wait{10000};                   // when the search ends at the latest
    bool Once = false;                  // asks all devices a single time and then waits
    std::size_t Expect = 0;             // so many devices end it; 0 when their number is unknown
    bool Sweep = true;                  // may ask the addresses of the local networks one by one
    std::vector<Network> Networks = {}; // this machine's addresses, with the networks that they are in
    std::vector<Network> Also = {};     // addresses elsewhere, such as behind routers, to be asked one by one

    /// Of addresses in Also.
    static constexpr std::size_t MaximumAlso = 65536;
};
} // namespace Zent::Discovery::Inventory
