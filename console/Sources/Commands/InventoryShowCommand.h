#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Shows the devices of a saved result. Needs no library.
class InventoryShowCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string file; // the UTF-8 path of what the program has printed with --json
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
