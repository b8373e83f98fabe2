#pragma once

#include "Broker/BrokerSettings.h"
#include "Programs/MessageQueue.h"

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Zent::Discovery::Console
{
class Output;
}

namespace Zent::Discovery::FleetConsole
{
/// How the program ends; scripts rely on the numbers, which mean the same as those of the console.
enum class ExitStatus
{
    Success = 0,
    Failure = 1,    // the broker cannot be reached or refuses
    Usage = 2,      // or a command that was not sent
    NoAnswer = 3,   // the broker has no site, or a command has come to anything but what it is for
    Incomplete = 6, // less was received, or removed, than there is
    Errors = 7,     // the broker is no good for the inventory
    Interrupted = 130
};

/// What a command runs with. All of it outlives the command.
struct CommandContext
{
    Broker::BrokerSettings Broker;
    std::vector<std::string> Sites; // all when it is empty
    Programs::MessageQueue& Waiter;
    Console::Output& Out;
};

/// One of the program's commands.
class ICommand
{
public:
    virtual ~ICommand() = default;

    /// Adds the command to the program's. Reading the command line fills it.
    virtual CLI::App& AddTo(CLI::App& program) = 0;

    /// Whether it shows rows, which may be comma-separated values.
    virtual bool HasRows() const { return false; }

    /// @throws std::runtime_error when the broker cannot be reached or refuses.
    virtual ExitStatus Run(CommandContext& context) = 0;
};
} // namespace Zent::Discovery::FleetConsole
