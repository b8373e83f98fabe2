#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

#include <cstddef>
#include <string>

namespace Zent::Discovery::Console
{
class DeviceTextTable;
class Output;

/// Tells which devices have appeared, left or changed between two saved results. Needs no library.
class InventoryDiffCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    /// Success when nothing differs, else Different.
    ExitStatus Run(CommandContext& context) override;

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

    std::string beforeFile; // the UTF-8 paths of what the program has printed with --json
    std::string afterFile;
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
