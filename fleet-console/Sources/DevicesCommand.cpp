#include "DevicesCommand.h"

#include "BrokerReader.h"
#include "Commands/Arguments.h"
#include "Commands/SharedOptions.h"
#include "Fleet/FleetRecords.h"
#include "Show/DeviceCsv.h"
#include "Show/Output.h"
#include "SitesCommand.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Console::DeviceCsv;
using Zent::Discovery::Console::DeviceTextTable;
using Zent::Discovery::Console::Output;
using Zent::Discovery::Console::SharedOptions;
using Zent::Discovery::Console::Style;
using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::FleetRecords;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// A device with its place in the fleet.
struct Row
{
    const SiteReading* Site;
    const std::string* Id;
    const DeviceRecord* Record;

    const char* State() const { return Site->StateNameOf(*Record); }
};

/// All devices, and beside each one its row.
struct Rows
{
    std::vector<Device> Devices;
    std::vector<Row> Places;
    bool IsCut = false; // some records are no devices

    const Row& Of(const Device& device) const { return Places[static_cast<std::size_t>(&device - Devices.data())]; }
};

DeviceMessage MessageOf(const DeviceRecord& record)
{
    const bool hasLeft = record.State() == DeviceRecord::DeviceState::Left;
    return {hasLeft ? DeviceMessage::MessageKind::Bye : DeviceMessage::MessageKind::Signature, record.ToDocument(),
            record.Since()};
}

/// Whoever may write to the broker may have written what is no device: that is said, and counts.
Rows Gather(const FleetReading& reading, FleetRecords& records, Output& output)
{
    Rows rows;
    for (const SiteReading& site : reading.Sites())
    {
        for (const auto& [id, record] : records.Of(site.Site()))
        {
            try
            {
                rows.Devices.emplace_back(MessageOf(record));
                rows.Places.push_back({&site, &id, &record});
            }
            catch (const std::invalid_argument& error)
            {
                output.Complain("site " + site.Site() + ": unreadable record of " + id + ": " + error.what());
                rows.IsCut = true;
            }
        }
    }
    return rows;
}

/// The record with its place, and with what is known of the device now.
std::string JsonOf(const Row& row)
{
    nlohmann::json document = nlohmann::json::parse(row.Record->ToJson());
    document.update({{"Site", row.Site->Site()}, {"Device", *row.Id}, {"State", row.State()}});
    return document.dump();
}

template <class TRest>
std::vector<std::string> With(std::vector<std::string> first, const TRest& rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

void Show(const Rows& rows, const std::vector<const Device*>& devices, Output& output)
{
    DeviceTextTable table = DeviceTextTable::OfSites(std::chrono::system_clock::now());
    for (const Device* device : devices)
    {
        const Row& row = rows.Of(*device);
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(JsonOf(row)));
        }
        else if (output.IsCsv())
        {
            output.PrintRow(With({"site", "state"}, DeviceCsv::Titles()),
                            With({row.Site->Site(), row.State()}, DeviceCsv::Cells(*device)));
        }
        else
        {
            const bool isPresent = row.State() == std::string_view("present");
            table.Add(*device, isPresent ? Style::Plain : Style::Left, {row.Site->Site(), row.State()});
        }
    }
    if (!output.IsJson() && !output.IsCsv())
    {
        output.Show(table);
    }
}
} // namespace

CLI::App& DevicesCommand::AddTo(CLI::App& program)
{
    Arguments arguments(program, "devices", "show the devices of the sites");
    SharedOptions::AddSelection(arguments, selection);
    return arguments.Command();
}

ExitStatus DevicesCommand::Run(CommandContext& context)
{
    FleetRecords records;
    FleetReading reading(context.Sites, SiteReading::ReadingScope::Devices, records);
    BrokerReader::Read(context.Broker, context.Waiter, reading);
    const Rows rows = Gather(reading, records, context.Out);
    Show(rows, selection.Of(rows.Devices, std::chrono::system_clock::now()), context.Out);
    const ExitStatus status = SitesCommand::Conclude(reading, context);
    return status == ExitStatus::Success && rows.IsCut ? ExitStatus::Incomplete : status;
}
} // namespace Zent::Discovery::FleetConsole
