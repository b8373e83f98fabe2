#pragma once

#include "Fleet/FleetReading.h"
#include "ICommand.h"

namespace Zent::Discovery::FleetConsole
{
/// Reads sites over a connection of its own.
class BrokerReader final
{
public:
    BrokerReader() = delete;

    /// Lets the reading come to its end, unless the user interrupts.
    /// @throws std::runtime_error when the broker cannot be reached, refuses, or the connection breaks.
    static void Read(CommandContext& context, Fleet::FleetReading& reading);

    /// How a command ends that has shown what was read; says what is missing.
    static ExitStatus Conclude(CommandContext& context, const Fleet::FleetReading& reading);
};
} // namespace Zent::Discovery::FleetConsole
