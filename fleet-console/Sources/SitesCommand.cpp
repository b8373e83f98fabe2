#include "SitesCommand.h"

#include "BrokerReader.h"
#include "Commands/Arguments.h"
#include "Inventory/DeviceColumn.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"
#include "Text/TextTable.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <string>
#include <vector>

using Zent::Discovery::Console::Output;
using Zent::Discovery::Console::Style;
using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Console::TextTable;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::ReadingListener;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Fleet::SiteState;
using Zent::Discovery::Fleet::UtcTime;
using Zent::Discovery::Inventory::DeviceColumn;

namespace Zent::Discovery::FleetConsole
{
namespace
{
std::string CountOf(const SiteReading& site)
{
    return site.Expected() ? std::to_string(*site.Expected()) : "";
}

std::string StartedOf(const SiteReading& site)
{
    return site.State() ? UtcTime::ToText(site.State()->Started) : "";
}

std::string MachineOf(const SiteReading& site)
{
    return site.State() ? site.State()->Machine : "";
}

Style LookOf(const SiteReading& site)
{
    return site.State() && site.State()->Kind == SiteState::StateKind::Ready ? Style::Plain : Style::Left;
}

std::string JsonOf(const SiteReading& site)
{
    nlohmann::json document = {{"Site", site.Site()}, {"State", site.StateName()}};
    if (site.Expected())
    {
        document["Devices"] = *site.Expected();
    }
    if (site.State())
    {
        document.update({{"Started", StartedOf(site)}, {"Machine", MachineOf(site)}});
    }
    return document.dump();
}

void ShowTable(const FleetReading& reading, Output& output)
{
    const auto now = std::chrono::system_clock::now();
    TextTable table({{"SITE"}, {"STATE"}, {"DEVICES"}, {"AGE"}, {"MACHINE", 0, 64, 1}});
    for (const SiteReading& site : reading.Sites())
    {
        const std::string age = site.State() ? DeviceColumn::AgeText(now - site.State()->Started) : "";
        table.AddRow({site.Site(), site.StateName(), CountOf(site), age, MachineOf(site)}, LookOf(site));
    }
    output.Show(table);
}
} // namespace

CLI::App& SitesCommand::AddTo(CLI::App& program)
{
    return Console::Arguments(program, "sites", "show the sites, their states and how many devices they have")
        .Command();
}

ExitStatus SitesCommand::Run(CommandContext& context)
{
    ReadingListener nobody;
    FleetReading reading(context.Sites, SiteReading::ReadingScope::Summary, nobody);
    BrokerReader::Read(context.Broker, context.Waiter, reading);
    Output& output = context.Out;
    if (output.IsJson() || output.IsCsv())
    {
        for (const SiteReading& site : reading.Sites())
        {
            if (output.IsJson())
            {
                output.PrintLine(TerminalText::Json(JsonOf(site)));
            }
            else
            {
                output.PrintRow({"site", "state", "devices", "started", "machine"},
                                {site.Site(), site.StateName(), CountOf(site), StartedOf(site), MachineOf(site)});
            }
        }
    }
    else
    {
        ShowTable(reading, output);
    }
    return Conclude(reading, context);
}

ExitStatus SitesCommand::Conclude(const FleetReading& reading, CommandContext& context)
{
    if (context.Waiter.IsInterrupted())
    {
        context.Out.Complain("interrupted before everything was received");
        return ExitStatus::Interrupted;
    }
    for (const std::string& text : reading.Shortfalls())
    {
        context.Out.Complain(text);
    }
    if (reading.Sites().empty())
    {
        context.Out.Complain("the broker has no site, or none that this user may read");
        return ExitStatus::NoAnswer;
    }
    return reading.Shortfalls().empty() ? ExitStatus::Success : ExitStatus::Incomplete;
}
} // namespace Zent::Discovery::FleetConsole
