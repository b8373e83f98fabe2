#include "InventoryShowCommand.h"

#include "InventoryReader.h"
#include "Output.h"

#include <chrono>
#include <utility>

using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceSelection;

namespace Zent::Discovery::Console
{
InventoryShowCommand::InventoryShowCommand(std::string file, DeviceSelection selection)
    : file(std::move(file))
    , selection(std::move(selection))
{
}

ExitStatus InventoryShowCommand::Run(Output& output) const
{
    const DeviceList inventory = InventoryReader::Read(file);
    output.Show(selection.Of(inventory.Devices(), std::chrono::system_clock::now()));
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
