#include "Commands/ParserReport.h"

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
namespace
{
/// The innermost command that the user named; the program itself without one.
const CLI::App& LastCommand(const CLI::App& app)
{
    const std::vector<CLI::App*> commands = app.get_subcommands();
    return commands.empty() ? app : LastCommand(*commands.front());
}

/// What is wrong when a command is missing, of which the parser would say only that; else empty.
std::string WhatIsMissing(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App& last = LastCommand(app);
    const bool isAboutCommands = error.get_name() == "RequiredError" || error.get_name() == "ExtrasError";
    if (!isAboutCommands || last.get_require_subcommand_min() == 0 || !last.get_subcommands().empty())
    {
        return "";
    }
    const std::vector<std::string> rest = app.remaining(true);
    return rest.empty()                    ? "a command is missing"
           : rest.front().starts_with('-') ? "unknown option " + rest.front()
                                           : "unknown command " + rest.front();
}
} // namespace

bool ParserReport::Print(const CLI::App& program, const CLI::ParseError& error, std::ostream& out, std::ostream& errors)
{
    const bool isHelp = error.get_exit_code() == 0;
    errors << (isHelp ? "" : program.get_name() + ": ");
    const std::string missing = WhatIsMissing(program, error);
    if (missing.empty())
    {
        program.exit(error, out, errors);
    }
    else
    {
        errors << missing << "\nRun with --help for more information.\n";
    }
    return isHelp;
}
} // namespace Zent::Discovery::Console
