#include "AskCommand.h"
#include "BrokerOptions.h"
#include "ChangeCommands.h"
#include "CheckBrokerCommand.h"
#include "Commands/ParserReport.h"
#include "DevicesCommand.h"
#include "ForgetCommand.h"
#include "Programs/Interruption.h"
#include "Programs/Process.h"
#include "Programs/ProgramVersion.h"
#include "Programs/WrongArgument.h"
#include "ServeCommand.h"
#include "Show/Output.h"
#include "SitesCommand.h"
#include "Terminal/HostPlatform.h"
#include "Terminal/Terminal.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <initializer_list>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Zent::Discovery::FleetConsole;
using Zent::Discovery::Console::HostPlatform;
using Zent::Discovery::Console::Output;
using Zent::Discovery::Console::ParserReport;
using Zent::Discovery::Console::Terminal;
using Zent::Discovery::Console::TextTable;
using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::Process;
using Zent::Discovery::Programs::WrongArgument;

namespace
{
constexpr char ProgramName[] = "discovery-fleet";

/// The arguments of the program: its options and its commands.
class CommandLine final
{
public:
    CommandLine()
        : App("Shows what a message broker has of the devices of many sites, and sends commands to their agents.",
              ProgramName)
    {
        App.require_subcommand(1);
        App.failure_message(CLI::FailureMessage::simple);
        App.set_version_flag("--version", std::string(ProgramName) + " " + Zent::Discovery::Programs::ProgramVersion);
        Broker.AddTo(App);
        App.add_option("--site", Sites, "this site alone; may be repeated")->type_name("NAME")->allow_extra_args(false);
        auto* const json = App.add_flag("--json", Json, "one JSON document per line");
        App.add_flag("--csv", Csv, "comma-separated values")->excludes(json);
        for (ICommand* command : std::initializer_list<ICommand*>{&sites, &devices, &serve, &rename, &configure,
                                                                  &discover, &refresh, &checkBroker, &forget})
        {
            CLI::App& added = command->AddTo(App);
            added.fallthrough();
            added.footer("The options of discovery-fleet --help may stand here, too.\n");
            added.callback([this, command] { Chosen = command; });
        }
        App.footer("Exit status:\n"
                   "  0     everything was received; the device has taken the change; the broker is right\n"
                   "  1     the broker cannot be reached or refuses\n"
                   "  2     wrong arguments, or a command that was not sent\n"
                   "  3     the broker has no site, or a command has not come true\n"
                   "  6     less was received, or removed, than there is; the broker gives less than it has\n"
                   "  7     the broker is set up so that the inventory does not work\n"
                   "  130   interrupted\n");
    }

    CLI::App App;
    BrokerOptions Broker;
    std::vector<std::string> Sites;
    bool Json = false;
    bool Csv = false;
    ICommand* Chosen = nullptr;

private:
    SitesCommand sites;
    DevicesCommand devices;
    ServeCommand serve;
    RenameCommand rename;
    ConfigureCommand configure;
    AskCommand discover{Command::CommandKind::Discover};
    AskCommand refresh{Command::CommandKind::Refresh};
    CheckBrokerCommand checkBroker;
    ForgetCommand forget;
};

ExitStatus Run(const CommandLine& line)
{
    MessageQueue waiter;
    const Interruption interruption([&waiter] { waiter.Interrupt(); });
    const Terminal out(Terminal::Stream::Output);
    const Terminal errors(Terminal::Stream::Errors);
    Output output(std::cout, std::cerr,
                  {.Json = line.Json,
                   .Csv = line.Csv,
                   .OutIsTerminal = out.IsInteractive(),
                   .ErrorsAreTerminal = errors.IsInteractive(),
                   .HasColours = HostPlatform::EnvironmentVariable("NO_COLOR").empty(),
                   .Width = out.IsInteractive() ? out.Size().Width : TextTable::NoLimit,
                   .Program = ProgramName});
    try
    {
        if (line.Csv && !line.Chosen->HasRows())
        {
            throw WrongArgument("--csv: only sites and devices have rows");
        }
        CommandContext context{line.Broker.Settings(), line.Sites, waiter, output};
        const ExitStatus status = line.Chosen->Run(context);
        return output.Finish() ? status : ExitStatus::Failure;
    }
    catch (const WrongArgument& error)
    {
        output.Complain(error.what());
        return ExitStatus::Usage;
    }
    catch (const std::invalid_argument& error) // names of sites
    {
        output.Complain(error.what());
        return ExitStatus::Usage;
    }
    catch (const std::exception& error)
    {
        output.Complain(error.what());
        return ExitStatus::Failure;
    }
}
} // namespace

int main(int argc, char* argv[])
{
    try
    {
        Process::PrepareStreams();
        CommandLine line;
        try
        {
            line.App.parse(argc, argv);
        }
        catch (const CLI::ParseError& error)
        {
            const bool isHelp = ParserReport::Print(line.App, error, std::cout, std::cerr);
            return static_cast<int>(isHelp ? ExitStatus::Success : ExitStatus::Usage);
        }
        return static_cast<int>(Run(line));
    }
    catch (const std::exception& error)
    {
        std::cerr << ProgramName << ": " << error.what() << '\n';
        return static_cast<int>(ExitStatus::Failure);
    }
}
