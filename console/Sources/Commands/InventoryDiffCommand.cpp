#include "Commands/InventoryDiffCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/DifferenceReport.h"
#include "Commands/InventoryReader.h"
#include "Commands/SharedOptions.h"
#include "Show/Output.h"

using Zent::Discovery::Inventory::DeviceList;

namespace Zent::Discovery::Console
{
CLI::App& InventoryDiffCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "diff", "tell which devices have appeared, left or changed");
    arguments.AddPositional("BEFORE", beforeFile, "the earlier result, saved with: discover --json > FILE");
    arguments.AddPositional("AFTER", afterFile, "the later result");
    SharedOptions::AddSelection(arguments, selection);
    return arguments.Command();
}

ExitStatus InventoryDiffCommand::Run(CommandContext& context)
{
    const DeviceList before = InventoryReader::Read(beforeFile);
    const DeviceList after = InventoryReader::Read(afterFile);
    const DifferenceReport::Counts counts =
        DifferenceReport(context.Out(), {"appeared", "changed", "left"}, DifferenceReport::Scope::Changes)
            .Compare(before, after, selection);
    context.Out().Conclude(std::to_string(counts.Appeared) + " appeared, " + std::to_string(counts.Left) + " left, " +
                           std::to_string(counts.Changed) + " changed, " + std::to_string(counts.Same) + " unchanged");
    return counts.Appeared + counts.Left + counts.Changed > 0 ? ExitStatus::Different : ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
