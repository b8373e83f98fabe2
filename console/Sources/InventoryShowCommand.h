#pragma once

#include "ExitStatus.h"
#include "Inventory/DeviceSelection.h"

#include <string>

namespace Zent::Discovery::Console
{
class Output;

/// Shows the devices of a saved result. Needs no library.
class InventoryShowCommand final
{
public:
    /// file is the UTF-8 path of what the program has printed with --json.
    InventoryShowCommand(std::string file, Inventory::DeviceSelection selection);

    /// @throws std::runtime_error when the file cannot be read or holds something else.
    ExitStatus Run(Output& output) const;

private:
    const std::string file;
    const Inventory::DeviceSelection selection;
};
} // namespace Zent::Discovery::Console
