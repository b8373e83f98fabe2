#pragma once

#include "Fleet/Command.h"
#include "Fleet/FleetReading.h"
#include "Fleet/FleetRecords.h"
#include "ICommand.h"
#include "Inventory/ChangeReport.h"
#include "SiteDevices.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
class Arguments;
}

namespace Zent::Discovery::FleetConsole
{
/// Changes devices of a site by commands to its agent: reads the site, checks, shows and asks, sends, and tells what
/// has come of it. Main thread only.
class RemoteChange final
{
public:
    /// What users may say to it.
    struct Settings
    {
        /// Reading the command line fills them.
        void AddTo(Console::Arguments& arguments);

        bool Yes = false;
        bool Force = false;
        bool DryRun = false;
        std::optional<std::chrono::milliseconds> Timeout;
    };

    /// Both must outlive the object.
    /// @throws Programs::WrongArgument when not just one site is named.
    RemoteChange(CommandContext& context, const Settings& settings);

    /// Reads the site; false once the user has interrupted.
    /// @throws std::runtime_error when the broker cannot be reached or refuses.
    bool Look();

    /// Once Look is done.
    const SiteDevices& Devices() const { return *devices; }

    /// Carries out these requests, which are in normal form, all of them or none, and tells the user of each.
    /// @throws std::runtime_error when the broker cannot be reached.
    ExitStatus CarryOut(const std::vector<Inventory::ChangeRequest>& requests);

private:
    using Reports = std::vector<Inventory::ChangeReport>;
    using Verdicts = std::vector<Fleet::Verdict>;

    std::optional<Verdicts> Check(Reports& reports) const;
    ExitStatus Ask(const Reports& reports);
    std::vector<Fleet::Command> CommandsFor(const Reports& reports) const;
    void Tell(const Reports& reports, const Verdicts& verdicts) const;

    CommandContext& context;
    const Settings& settings;
    const std::string& site;
    Fleet::FleetRecords records;
    Fleet::FleetReading reading;
    std::optional<SiteDevices> devices;
};
} // namespace Zent::Discovery::FleetConsole
