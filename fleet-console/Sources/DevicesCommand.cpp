#include "DevicesCommand.h"

#include "BrokerReader.h"
#include "Commands/Arguments.h"
#include "Commands/SharedOptions.h"
#include "Fleet/FleetRecords.h"
#include "Show/DeviceCsv.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

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
using Zent::Discovery::Inventory::DeviceColumn;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::FleetConsole
{
namespace
{
DeviceMessage MessageOf(const DeviceRecord& record)
{
    const bool hasLeft = record.State() == DeviceRecord::DeviceState::Left;
    return {hasLeft ? DeviceMessage::MessageKind::Bye : DeviceMessage::MessageKind::Signature, record.ToDocument(),
            record.Since()};
}

/// A device with its place in the fleet.
class SiteDevice final : public Device
{
public:
    SiteDevice(const SiteReading& site, const std::string& id, const DeviceRecord& record)
        : Device(MessageOf(record))
        , site(&site)
        , id(&id)
        , record(&record)
    {
    }

    const std::string& Site() const { return site->Site(); }

    const char* State() const { return site->StateNameOf(*record); }

    const std::string& Id() const { return *id; }

    const DeviceRecord& Record() const { return *record; }

private:
    const SiteReading* site;
    const std::string* id;
    const DeviceRecord* record;
};

/// Only such devices are shown and selected here.
const SiteDevice& Of(const Device& device)
{
    return static_cast<const SiteDevice&>(device);
}

std::string Site(const Device& device, DeviceColumn::TimePoint /*now*/)
{
    return Of(device).Site();
}

std::string State(const Device& device, DeviceColumn::TimePoint /*now*/)
{
    return Of(device).State();
}

constexpr DeviceColumn PlaceColumns[] = {
    {"site", &Site, &DeviceColumn::IsNaturallyBefore<&Site>},
    {"state", &State, &DeviceColumn::IsNaturallyBefore<&State>},
};

struct Rows
{
    std::vector<SiteDevice> Devices;
    bool IsCut = false; // some records are no devices
};

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
                rows.Devices.emplace_back(site, id, record);
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
std::string JsonOf(const SiteDevice& device)
{
    nlohmann::json document = nlohmann::json::parse(device.Record().ToJson());
    document.update({{"Site", device.Site()}, {"Device", device.Id()}, {"State", device.State()}});
    return document.dump();
}

template <class TRest>
std::vector<std::string> With(std::vector<std::string> first, const TRest& rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

void Show(const std::vector<const Device*>& devices, Output& output)
{
    DeviceTextTable table = DeviceTextTable::OfSites(std::chrono::system_clock::now());
    for (const Device* each : devices)
    {
        const SiteDevice& device = Of(*each);
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(JsonOf(device)));
        }
        else if (output.IsCsv())
        {
            output.PrintRow(With({"site", "state"}, DeviceCsv::Titles()),
                            With({device.Site(), device.State()}, DeviceCsv::Cells(device)));
        }
        else
        {
            const bool isPresent = device.State() == std::string_view("present");
            table.Add(device, isPresent ? Style::Plain : Style::Left, {device.Site(), device.State()});
        }
    }
    if (!output.IsJson() && !output.IsCsv())
    {
        output.Show(table);
    }
}
} // namespace

DevicesCommand::DevicesCommand()
    : selection(&TerminalText::Plain, PlaceColumns)
{
}

CLI::App& DevicesCommand::AddTo(CLI::App& program)
{
    Arguments arguments(program, "devices", "show the devices of the sites");
    SharedOptions::AddSelection(arguments, selection, "");
    return arguments.Command();
}

ExitStatus DevicesCommand::Run(CommandContext& context)
{
    FleetRecords records;
    FleetReading reading(context.Sites, SiteReading::ReadingScope::Devices, records);
    BrokerReader::Read(context, reading);
    const Rows rows = Gather(reading, records, context.Out);
    Show(selection.Of(rows.Devices, std::chrono::system_clock::now()), context.Out);
    const ExitStatus status = BrokerReader::Conclude(context, reading);
    return status == ExitStatus::Success && rows.IsCut ? ExitStatus::Incomplete : status;
}
} // namespace Zent::Discovery::FleetConsole
