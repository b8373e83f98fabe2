#pragma once

#include "Broker/BrokerSettings.h"
#include "Fleet/FleetReading.h"
#include "Programs/MessageQueue.h"

namespace Zent::Discovery::FleetConsole
{
/// Reads sites over a connection of its own.
class BrokerReader final
{
public:
    BrokerReader() = delete;

    /// Lets the reading come to its end; waiter is where the program waits, and is interrupted.
    /// @throws std::runtime_error when the broker cannot be reached, refuses, or the connection breaks.
    static void Read(const Broker::BrokerSettings& settings,
                     Programs::MessageQueue& waiter,
                     Fleet::FleetReading& reading);
};
} // namespace Zent::Discovery::FleetConsole
