#pragma once

#include "Commands/ExitStatus.h"

namespace CLI
{
class App;
}

namespace Zent::Discovery::Console
{
class CommandContext;

/// One of the program's commands.
class ICommand
{
public:
    virtual ~ICommand() = default;

    /// Adds the command with its arguments to the program's, or to a group's. Reading the command line fills them.
    virtual CLI::App& AddTo(CLI::App& parent) = 0;

    /// Whether it can show what it has to show as comma-separated values.
    virtual bool HasCsv() const { return true; }

    /// Once the command line has been read.
    /// @throws std::runtime_error when a file cannot be used, or the library cannot be loaded or refuses.
    virtual ExitStatus Run(CommandContext& context) = 0;
};
} // namespace Zent::Discovery::Console
