#include "Commands/InventoryDiffCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/InventoryReader.h"
#include "Commands/SharedOptions.h"
#include "Inventory/DeviceDifferences.h"
#include "Json/JSONStringer.h"
#include "Show/DeviceTextTable.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <vector>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceDifferences;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
namespace
{
using Differences = std::vector<DeviceDifferences::Difference>;

void AddMember(JSONStringer& stringer, const char* key, const std::optional<std::string>& value)
{
    if (value)
    {
        stringer.Key(key);
        stringer.Value(std::string_view(*value));
    }
}

/// As members of a document.
std::string JsonOf(const Differences& differences)
{
    JSONStringer stringer;
    stringer.Array();
    for (const DeviceDifferences::Difference& difference : differences)
    {
        stringer.Object();
        AddMember(stringer, "Property", difference.Property);
        AddMember(stringer, "Before", difference.Before);
        AddMember(stringer, "After", difference.After);
        stringer.EndObject();
    }
    stringer.EndArray();
    return R"(,"Differences":)" + TerminalText::Json(stringer.ToString().View());
}

/// What has become of a device.
struct Change
{
    const char* Text;
    const char* JsonName;
    Style Look;
};

constexpr Change Appeared = {"appeared", "Appeared", Style::Appeared};
constexpr Change Changed = {"changed", "Changed", Style::Changed};
constexpr Change Left = {"left", "Left", Style::Left};

/// Puts what has become of a device into the table or, for scripts, prints it.
void Report(Output& output,
            DeviceTextTable& table,
            const Device& device,
            const Change& change,
            const Differences& differences = {})
{
    if (output.IsJson())
    {
        output.PrintDocument(std::string(R"("Change":")") + change.JsonName + '"' +
                                 (differences.empty() ? "" : JsonOf(differences)),
                             device);
        return;
    }
    table.Add(device, change.Look, change.Text);
    for (const DeviceDifferences::Difference& difference : differences)
    {
        table.AddNote(difference.ToString());
    }
}
} // namespace

CLI::App& InventoryDiffCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("diff", "tell which devices have appeared, left or changed");
    command.add_option("BEFORE", beforeFile, "the earlier result, saved with: discover --json > FILE")
        ->required()
        ->type_name("");
    command.add_option("AFTER", afterFile, "the later result")->required()->type_name("");
    SharedOptions::AddSelection(command, selection);
    return command;
}

ExitStatus InventoryDiffCommand::Run(CommandContext& context)
{
    Output& output = context.Out();
    const DeviceList before = InventoryReader::Read(beforeFile);
    const DeviceList after = InventoryReader::Read(afterFile);
    DeviceTextTable table = DeviceTextTable::Changes();
    const Counts counts = Compare(before, after, table, output);
    const bool differs = counts.Appeared + counts.Left + counts.Changed > 0;
    if (differs && !output.IsJson())
    {
        output.Show(table);
    }
    output.Conclude(std::to_string(counts.Appeared) + " appeared, " + std::to_string(counts.Left) + " left, " +
                    std::to_string(counts.Changed) + " changed, " + std::to_string(counts.Same) + " unchanged");
    return differs ? ExitStatus::Different : ExitStatus::Success;
}

InventoryDiffCommand::Counts InventoryDiffCommand::Compare(const DeviceList& before,
                                                           const DeviceList& after,
                                                           DeviceTextTable& table,
                                                           Output& output) const
{
    Counts counts;
    for (const Device* device : selection.Of(after.Devices(), std::chrono::system_clock::now()))
    {
        const Device* const former = before.Find(*device);
        if (former == nullptr)
        {
            ++counts.Appeared;
            Report(output, table, *device, Appeared);
            continue;
        }
        const Differences differences = DeviceDifferences::Between(*former, *device);
        ++(differences.empty() ? counts.Same : counts.Changed);
        if (!differences.empty())
        {
            Report(output, table, *device, Changed, differences);
        }
    }
    for (const Device* device : selection.Of(before.Devices(), std::chrono::system_clock::now()))
    {
        if (after.Find(*device) == nullptr)
        {
            ++counts.Left;
            Report(output, table, *device, Left);
        }
    }
    return counts;
}
} // namespace Zent::Discovery::Console
