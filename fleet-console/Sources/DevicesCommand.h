#pragma once

#include "ICommand.h"
#include "Inventory/DeviceSelection.h"

namespace Zent::Discovery::FleetConsole
{
/// Shows the devices of sites.
class DevicesCommand final : public ICommand
{
public:
    DevicesCommand();

    CLI::App& AddTo(CLI::App& program) override;

    bool HasRows() const override { return true; }

    ExitStatus Run(CommandContext& context) override;

private:
    Inventory::DeviceSelection selection;
};
} // namespace Zent::Discovery::FleetConsole
