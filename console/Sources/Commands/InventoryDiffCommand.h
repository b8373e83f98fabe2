#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Tells which devices have appeared, left or changed between two saved results. Needs no library.
class InventoryDiffCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    /// Success when nothing differs, else Different.
    ExitStatus Run(CommandContext& context) override;

private:
    std::string beforeFile; // the UTF-8 paths of what the program has printed with --json
    std::string afterFile;
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
