#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

#include <cstddef>

namespace Zent::Discovery::Inventory
{
class DeviceList;
}

namespace Zent::Discovery::Console
{
/// Asks all devices for their signatures and shows who was heard of.
class DiscoverCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    ExitStatus Conclude(const Inventory::DeviceList& inventory, std::size_t shown, CommandContext& context) const;

    std::size_t expectedDevices = 0; // among those that the selection accepts; 0 when their number is unknown
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
