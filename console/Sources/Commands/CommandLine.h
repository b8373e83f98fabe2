#pragma once

#include "Commands/ICommand.h"
#include "Commands/ProgramOptions.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// The arguments of the program: its options and its commands.
class CommandLine final
{
public:
    CommandLine();
    ~CommandLine();

    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Reads the arguments, once. The command that the user wants; null when there is nothing left to do: help was
    /// printed to out, or what is wrong to errors. status then says how to end.
    ICommand* Parse(const std::vector<std::string>& arguments,
                    std::ostream& out,
                    std::ostream& errors,
                    ExitStatus& status);

    const ProgramOptions& Options() const { return options; }

private:
    void Add(CLI::App& parent, std::unique_ptr<ICommand> command);

    ProgramOptions options;
    const std::unique_ptr<CLI::App> app;
    std::vector<std::unique_ptr<ICommand>> commands;
    ICommand* chosen = nullptr;
};
} // namespace Zent::Discovery::Console
