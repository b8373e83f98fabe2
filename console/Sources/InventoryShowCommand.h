#pragma once

#include "DeviceSelection.h"
#include "ExitStatus.h"

#include <string>

namespace Zent::Discovery::Console
{
class Output;

/// Shows the devices of a saved result. Needs no library.
class InventoryShowCommand final
{
public:
    /// file is the UTF-8 path of what the program has printed with --json.
    InventoryShowCommand(std::string file, DeviceSelection selection);

    /// @throws std::runtime_error when the file cannot be read or holds something else.
    ExitStatus Run(Output& output) const;

private:
    const std::string file;
    const DeviceSelection selection;
};
} // namespace Zent::Discovery::Console
