#include "Commands/CommandLine.h"

#include "Commands/ConfigureCommand.h"
#include "Commands/DiscoverCommand.h"
#include "Commands/ErrorCommand.h"
#include "Commands/InventoryDiffCommand.h"
#include "Commands/InventoryShowCommand.h"
#include "Commands/ParserReport.h"
#include "Commands/RenameCommand.h"
#include "Commands/RequestCommands.h"
#include "Commands/SiteCommands.h"
#include "Commands/UndoCommand.h"
#include "Commands/WatchCommand.h"
#include "Doctor/DoctorCommand.h"
#include "Programs/ProgramVersion.h"
#include "Support/SupportBundleCommand.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace Zent::Discovery::Console
{
CommandLine::CommandLine()
    : app(std::make_unique<CLI::App>("Finds devices on the local networks and talks with them.", "discovery-console"))
{
    app->require_subcommand(1);
    app->allow_windows_style_options(false); // an argument such as /tmp/file.json is a path on every system
    app->failure_message(CLI::FailureMessage::simple);
    app->set_version_flag("--version", std::string("discovery-console ") + Programs::ProgramVersion);
    options.AddTo(*app);
    Add(*app, std::make_unique<DiscoverCommand>());
    Add(*app, std::make_unique<WatchCommand>());
    Add(*app, std::make_unique<RefreshCommand>());
    Add(*app, std::make_unique<ReachCommand>());
    Add(*app, std::make_unique<RenameCommand>());
    Add(*app, std::make_unique<ConfigureCommand>());
    Add(*app, std::make_unique<UndoCommand>());
    CLI::App& inventory = *app->add_subcommand("inventory", "look at results that were saved with --json");
    inventory.fallthrough();
    inventory.require_subcommand(1);
    Add(inventory, std::make_unique<InventoryShowCommand>());
    Add(inventory, std::make_unique<InventoryDiffCommand>());
    CLI::App& site = *app->add_subcommand("site", "keep names and addresses of all devices in a file");
    site.fallthrough();
    site.require_subcommand(1);
    Add(site, std::make_unique<SiteExportCommand>());
    Add(site, std::make_unique<SiteDiffCommand>());
    Add(site, std::make_unique<SiteApplyCommand>());
    Add(*app, std::make_unique<DoctorCommand>());
    Add(*app, std::make_unique<SupportBundleCommand>());
    Add(*app, std::make_unique<ErrorCommand>());
    app->footer(ExitStatusTable()); // last: commands would take it over
}

CommandLine::~CommandLine() = default;

ICommand* CommandLine::Parse(const std::vector<std::string>& arguments,
                             std::ostream& out,
                             std::ostream& errors,
                             ExitStatus& status)
{
    try
    {
        app->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (options.Csv && !chosen->HasCsv())
        {
            throw CLI::ValidationError("--csv", "this command shows no table of devices");
        }
        return chosen;
    }
    catch (const CLI::ParseError& error)
    {
        status = ParserReport::Print(*app, error, out, errors) ? ExitStatus::Success : ExitStatus::Usage;
        return nullptr;
    }
}

void CommandLine::Add(CLI::App& parent, std::unique_ptr<ICommand> command)
{
    CLI::App& added = command->AddTo(parent);
    added.fallthrough();
    added.footer("The options of discovery-console --help, such as --from, --wait and --json, may stand here, too.\n");
    added.callback([this, each = command.get()] { chosen = each; });
    commands.push_back(std::move(command));
}
} // namespace Zent::Discovery::Console
