#pragma once

#include "Behaviour.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Which devices to simulate, and how they behave.
struct SimulationOptions
{
    std::int32_t Count = 3;
    std::uint64_t Seed = 1;

    std::vector<std::string> Addresses;   // of the devices in order; those beyond get addresses of the network
    std::string Network = "127.0.0.10/8"; // the address of the first device, from which the others count on

    std::string ReplayPath; // of a recording, whose devices play instead of invented ones; empty for none

    Behaviour AtStart;
    std::string ProtocolVersion; // of the messages; empty for the system's own
    bool SaysHello = true;
    bool SaysBye = true;
    bool NamesSourceNIC = true;
    bool HostNamesAreReadOnly = false;

    bool SharesPort = false; // with other programs on this machine
    bool Talks = false;      // prints what the devices do
    std::string TracePath;   // where it is written what they do; empty for nowhere
};
} // namespace Zent::Discovery::Simulator
