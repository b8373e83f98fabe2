#include "SitesCommand.h"

#include "BrokerReader.h"
#include "Commands/Arguments.h"
#include "Commands/SharedOptions.h"
#include "Inventory/DeviceColumn.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"
#include "Text/TextTable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string>
#include <vector>

using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Console::Output;
using Zent::Discovery::Console::SharedOptions;
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
using Column = Inventory::Column<SiteReading>;

std::string Site(const SiteReading& site, Column::TimePoint /*now*/)
{
    return site.Site();
}

std::string State(const SiteReading& site, Column::TimePoint /*now*/)
{
    return site.StateName();
}

std::string Devices(const SiteReading& site, Column::TimePoint /*now*/)
{
    return site.Expected() ? std::to_string(*site.Expected()) : "";
}

std::string Age(const SiteReading& site, Column::TimePoint now)
{
    return site.State() ? DeviceColumn::AgeText(now - site.State()->Started) : "";
}

std::string Machine(const SiteReading& site, Column::TimePoint /*now*/)
{
    return site.State() ? site.State()->Machine : "";
}

/// Those of which nobody knows come last.
bool IsYounger(const SiteReading& left, const SiteReading& right)
{
    return left.State() && (!right.State() || left.State()->Started > right.State()->Started);
}

constexpr Column Columns[] = {
    {"site", &Site, &Column::IsNaturallyBefore<&Site>},          {"state", &State, &Column::IsNaturallyBefore<&State>},
    {"devices", &Devices, &Column::IsNaturallyBefore<&Devices>}, {"age", &Age, &IsYounger},
    {"machine", &Machine, &Column::IsNaturallyBefore<&Machine>},
};

std::string StartedOf(const SiteReading& site)
{
    return site.State() ? UtcTime::ToText(site.State()->Started) : "";
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
        document.update({{"Started", StartedOf(site)}, {"Machine", site.State()->Machine}});
    }
    return document.dump();
}

void Show(const std::vector<const SiteReading*>& sites, Column::TimePoint now, Output& output)
{
    TextTable table({{"SITE"}, {"STATE"}, {"DEVICES"}, {"AGE"}, {"MACHINE", 0, 64, 1}});
    for (const SiteReading* site : sites)
    {
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(JsonOf(*site)));
        }
        else if (output.IsCsv())
        {
            output.PrintRow(
                {"site", "state", "devices", "started", "machine"},
                {site->Site(), site->StateName(), Devices(*site, now), StartedOf(*site), Machine(*site, now)});
        }
        else
        {
            std::vector<std::string> cells;
            std::ranges::transform(Columns, std::back_inserter(cells),
                                   [&](const Column& column) { return column.Text(*site, now); });
            const bool isReady = site->State() && site->State()->Kind == SiteState::StateKind::Ready;
            table.AddRow(cells, isReady ? Style::Plain : Style::Left);
        }
    }
    if (!output.IsJson() && !output.IsCsv())
    {
        output.Show(table);
    }
}
} // namespace

SitesCommand::SitesCommand()
    : selection(&TerminalText::Plain, {std::begin(Columns), std::end(Columns)})
{
}

CLI::App& SitesCommand::AddTo(CLI::App& program)
{
    Arguments arguments(program, "sites", "show the sites, their states and how many devices they have");
    SharedOptions::AddSelection(arguments, selection, "", "sites");
    return arguments.Command();
}

ExitStatus SitesCommand::Run(CommandContext& context)
{
    ReadingListener nobody;
    FleetReading reading(context.Sites, SiteReading::ReadingScope::Summary, nobody);
    BrokerReader::Read(context, reading);
    const auto now = std::chrono::system_clock::now();
    Show(selection.Of(reading.Sites(), now), now, context.Out);
    return BrokerReader::Conclude(context, reading);
}
} // namespace Zent::Discovery::FleetConsole
