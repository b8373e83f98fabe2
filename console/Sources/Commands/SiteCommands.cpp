#include "Commands/SiteCommands.h"

#include "Commands/Arguments.h"
#include "Commands/ChangeRun.h"
#include "Commands/CommandContext.h"
#include "Commands/SharedOptions.h"
#include "Commands/SiteFileReader.h"
#include "Commands/SiteSearch.h"
#include "Inventory/Network.h"
#include "Programs/SystemNetwork.h"
#include "Show/Output.h"
#include "Text/TextFile.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

using Zent::Discovery::Inventory::ChangeRefusal;
using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::Network;
using Zent::Discovery::Inventory::SiteDeviation;
using Zent::Discovery::Inventory::SiteFile;
using Zent::Discovery::Inventory::SitePlan;
using Zent::Discovery::Programs::NetworkInterface;
using Zent::Discovery::Programs::SystemNetwork;

namespace Zent::Discovery::Console
{
namespace
{
using Deviations = std::vector<SiteDeviation>;
using Kind = SiteDeviation::DeviationKind;

void AddFile(Arguments& arguments, std::string& file)
{
    arguments.AddPositional("FILE", file, "written with: site export FILE");
}

std::size_t Count(const Deviations& deviations, Kind kind)
{
    return static_cast<std::size_t>(std::ranges::count(deviations, kind, &SiteDeviation::Kind));
}

void PrintRows(const SiteDeviation& deviation, Output& output)
{
    const auto print = [&](const std::string& property, const std::string& found, const std::string& wanted) {
        output.PrintRow({"deviation", "name", "mac", "ip", "property", "found", "wanted"},
                        {deviation.KindName(), deviation.HostName(), deviation.MACAddress(), deviation.IPAddress(),
                         property, found, wanted});
    };
    for (const auto& each : deviation.Properties)
    {
        print(each.Property, each.Before.value_or(""), each.After.value_or(""));
    }
    if (deviation.Properties.empty())
    {
        print("", "", "");
    }
}

void Show(const Deviations& deviations, Output& output)
{
    TextTable table({{"DEVIATION"}, {"HOST NAME", 0, 40}, {"MAC", 0, 17}, {"IP", 0, 15}});
    for (const SiteDeviation& each : deviations)
    {
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(each.ToJson()));
            continue;
        }
        if (output.IsCsv())
        {
            PrintRows(each, output);
            continue;
        }
        static constexpr std::array Looks = {Style::Left, Style::Appeared, Style::Changed};
        table.AddRow({each.KindName(), each.HostName(), each.MACAddress(), each.IPAddress()},
                     Looks[static_cast<std::size_t>(each.Kind)]);
        for (const auto& difference : each.Properties)
        {
            table.AddNote(difference.ToString());
        }
    }
    if (!deviations.empty() && !output.IsJson() && !output.IsCsv())
    {
        output.Show(table);
    }
}

/// False when none is missing.
bool TellMissing(const Deviations& deviations, Output& output)
{
    for (const SiteDeviation& each : deviations)
    {
        if (each.Kind == Kind::Missing)
        {
            output.Complain(each.ToString());
        }
    }
    return Count(deviations, Kind::Missing) > 0;
}

std::vector<std::string> OwnAddresses()
{
    std::vector<std::string> addresses;
    for (const NetworkInterface& interface : SystemNetwork::Interfaces())
    {
        for (const Network& network : interface.Addresses)
        {
            addresses.push_back(Network::TextOf(network.Address));
        }
    }
    return addresses;
}

bool IsMatterOfOpinion(const ChangeRefusal& refusal)
{
    return refusal.Code == ChangeRefusal::RefusalCode::NameTaken ||
           refusal.Code == ChangeRefusal::RefusalCode::AddressTaken;
}

/// A change that is not begun, as those are told that are.
void Show(const SitePlan::Obstacle& obstacle, Output& output)
{
    const ChangeReport report{.Id = 0,
                              .Request = obstacle.Request,
                              .Verdict = ChangeReport::ChangeVerdict::NotSent,
                              .Refusal = obstacle.Refusal};
    if (output.IsJson())
    {
        output.PrintLine("{\"Change\":" + TerminalText::Json(report.ToJson()) + "}");
    }
    else
    {
        output.Complain(obstacle.Refusal.ToString());
    }
}
} // namespace

CLI::App& SiteExportCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "export", "write names and addresses of all devices into a site file");
    arguments.AddPositional("FILE", file, "the file to make; - prints it");
    SharedOptions::AddSelection(arguments, selection);
    return arguments.Command();
}

ExitStatus SiteExportCommand::Run(CommandContext& context)
{
    SiteSearch search(context);
    const ExitStatus status = search.Run();
    if (status != ExitStatus::Success && status != ExitStatus::Incomplete)
    {
        return status;
    }
    const std::vector<const Device*> devices = selection.Of(search.Devices(), std::chrono::system_clock::now());
    if (devices.empty())
    {
        context.Out().Complain("devices found, but none that --filter accepts; nothing was written");
        return ExitStatus::NoAnswer;
    }
    std::istringstream lines(SiteFile::Of(devices).ToJson());
    std::string text;
    for (std::string line; std::getline(lines, line);)
    {
        text += TerminalText::Json(line) + "\n"; // which can be read again whatever devices send
    }
    if (file == TextFile::StandardInput)
    {
        text.pop_back();
        context.Out().PrintLine(text);
        return status;
    }
    TextFile::Write(file, text);
    const std::size_t count = devices.size();
    context.Out().Conclude(std::to_string(count) + (count == 1 ? " device" : " devices") + " written to " +
                           TerminalText::Plain(file));
    return status;
}

CLI::App& SiteDiffCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "diff", "tell which devices are missing, foreign or otherwise than a site file says");
    AddFile(arguments, file);
    return arguments.Command();
}

ExitStatus SiteDiffCommand::Run(CommandContext& context)
{
    const SiteFile site = SiteFileReader::Read(file);
    SiteSearch search(context);
    const ExitStatus status = search.Run();
    if (status == ExitStatus::Interrupted)
    {
        return status;
    }
    const std::vector<const Device*> devices = search.Devices();
    const Deviations deviations = site.Compare(devices);
    Show(deviations, context.Out());
    if (status == ExitStatus::NoAnswer)
    {
        return status;
    }
    context.Out().Conclude(std::to_string(Count(deviations, Kind::Missing)) + " missing, " +
                           std::to_string(Count(deviations, Kind::Foreign)) + " foreign, " +
                           std::to_string(Count(deviations, Kind::Deviating)) + " deviating");
    return deviations.empty() ? status : ExitStatus::Different;
}

CLI::App& SiteApplyCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "apply",
                        "give devices the names and addresses of a site file, one by one, up to the first failure");
    AddFile(arguments, file);
    arguments.Add(
        "--spare", "IP",
        [this](const std::string& text) {
            const std::optional<Inventory::IPv4> address = Network::ParseAddress(text);
            if (!address)
            {
                throw std::invalid_argument('"' + text + "\" is no IPv4 address");
            }
            options.SpareAddress = Network::TextOf(*address);
        },
        "a free address that devices which exchange theirs may have for a while; otherwise the highest one of "
        "their network that no device is known to have");
    settings.AddTo(arguments);
    return arguments.Command();
}

ExitStatus SiteApplyCommand::Run(CommandContext& context)
{
    const SiteFile site = SiteFileReader::Read(file);
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    ChangeRun run(context, settings);
    if (!run.Look())
    {
        return ExitStatus::Interrupted;
    }
    const std::vector<const Device*> devices = run.Devices().Here();
    const bool isAnyMissing = TellMissing(site.Compare(devices), context.Out());
    options.Reserved = OwnAddresses();
    std::vector<ChangeRun::Wanted> wanted;
    if (!Accept(SitePlan::For(site, devices, options), wanted, context.Out()))
    {
        return ExitStatus::Usage; // a part of it alone may be worse than nothing
    }
    ExitStatus status = ExitStatus::Success;
    if (wanted.empty())
    {
        context.Out().Conclude("nothing to change");
    }
    else
    {
        status = run.CarryOut(wanted, {.OneByOne = true, .Asks = true});
    }
    return status == ExitStatus::Success && isAnyMissing && !settings.DryRun ? ExitStatus::NoAnswer : status;
}

/// False, after saying why, when a part of the plan cannot be.
bool SiteApplyCommand::Accept(const SitePlan& plan, std::vector<ChangeRun::Wanted>& wanted, Output& output) const
{
    for (const SitePlan::Step& step : plan.Steps)
    {
        wanted.push_back({.Request = step.Request, .Exchange = step.Exchange});
        if (step.IsTemporary)
        {
            output.Conclude(TerminalText::Plain(step.Request.Interface.MACAddress + " takes " +
                                                step.Request.ToString() +
                                                " for a while: it exchanges its own with another device"));
        }
    }
    bool isAccepted = true;
    for (const SitePlan::Obstacle& obstacle : plan.Obstacles)
    {
        if (settings.Force && IsMatterOfOpinion(obstacle.Refusal))
        {
            wanted.push_back({.Request = obstacle.Request});
            continue;
        }
        isAccepted = false;
        Show(obstacle, output);
    }
    return isAccepted;
}
} // namespace Zent::Discovery::Console
