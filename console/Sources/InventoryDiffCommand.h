#pragma once

#include "ExitStatus.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"

#include <cstddef>
#include <string>

namespace Zent::Discovery::Console
{
class DeviceTextTable;
class Output;

/// Tells which devices have appeared, left or changed between two saved results. Needs no library.
class InventoryDiffCommand final
{
public:
    /// The files are UTF-8 paths of what the program has printed with --json.
    InventoryDiffCommand(std::string before, std::string after, Inventory::DeviceSelection selection);

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

    Counts Compare(const Inventory::DeviceList& before,
                   const Inventory::DeviceList& after,
                   DeviceTextTable& table,
                   Output& output) const;

    const std::string beforeFile;
    const std::string afterFile;
    const Inventory::DeviceSelection selection;
};
} // namespace Zent::Discovery::Console
