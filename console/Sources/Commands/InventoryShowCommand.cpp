#include "Commands/InventoryShowCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/InventoryReader.h"
#include "Commands/SharedOptions.h"
#include "Show/Output.h"

#include <CLI/CLI.hpp>

#include <chrono>

using Zent::Discovery::Inventory::DeviceList;

namespace Zent::Discovery::Console
{
CLI::App& InventoryShowCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("show", "show a saved result as a table");
    command.add_option("FILE", file, "saved with: discover --json > FILE")->required()->type_name("");
    SharedOptions::AddSelection(command, selection);
    return command;
}

ExitStatus InventoryShowCommand::Run(CommandContext& context)
{
    const DeviceList inventory = InventoryReader::Read(file);
    context.Out().Show(selection.Of(inventory.Devices(), std::chrono::system_clock::now()));
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
