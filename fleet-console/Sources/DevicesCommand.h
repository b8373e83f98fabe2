#pragma once

#include "ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

namespace Zent::Discovery::FleetConsole
{
/// Shows the devices of sites.
class DevicesCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    Inventory::DeviceSelection selection{&Console::TerminalText::Plain};
};
} // namespace Zent::Discovery::FleetConsole
