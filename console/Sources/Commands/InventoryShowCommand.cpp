#include "Commands/InventoryShowCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/InventoryReader.h"
#include "Commands/SharedOptions.h"
#include "Show/Output.h"

#include <chrono>

using Zent::Discovery::Inventory::DeviceList;

namespace Zent::Discovery::Console
{
CLI::App& InventoryShowCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "show", "show a saved result as a table");
    arguments.AddPositional("FILE", file, "saved with: discover --json > FILE");
    SharedOptions::AddSelection(arguments, selection);
    return arguments.Command();
}

ExitStatus InventoryShowCommand::Run(CommandContext& context)
{
    const DeviceList inventory = InventoryReader::Read(file);
    context.Out().Show(selection.Of(inventory.Devices(), std::chrono::system_clock::now()));
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
