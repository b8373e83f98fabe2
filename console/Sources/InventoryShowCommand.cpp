#include "InventoryShowCommand.h"

#include "InventoryReader.h"
#include "Output.h"

#include <utility>

namespace Zent::Discovery::Console
{
InventoryShowCommand::InventoryShowCommand(std::string file, DeviceSelection selection)
    : file(std::move(file))
    , selection(std::move(selection))
{
}

ExitStatus InventoryShowCommand::Run(Output& output) const
{
    const Inventory inventory = InventoryReader::Read(file);
    output.Show(selection.Of(inventory.Devices()));
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
