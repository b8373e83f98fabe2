#pragma once

#include "DeviceSelection.h"
#include "ExitStatus.h"
#include "Inventory.h"

#include <cstddef>
#include <string>

namespace Zent::Discovery::Console
{
class DeviceTable;
class Output;

/// Tells which devices have appeared, left or changed between two saved results. Needs no library.
class InventoryDiffCommand final
{
public:
    /// The files are UTF-8 paths of what the program has printed with --json.
    InventoryDiffCommand(std::string before, std::string after, DeviceSelection selection);

    /// Success when nothing differs, else Different.
    /// @throws std::runtime_error when a file cannot be read or holds something else.
    ExitStatus Run(Output& output) const;

private:
    struct Counts
    {
        std::size_t Appeared = 0;
        std::size_t Left = 0;
        std::size_t Changed = 0;
        std::size_t Same = 0;
    };

    Counts Compare(const Inventory& before, const Inventory& after, DeviceTable& table, Output& output) const;

    const std::string beforeFile;
    const std::string afterFile;
    const DeviceSelection selection;
};
} // namespace Zent::Discovery::Console
