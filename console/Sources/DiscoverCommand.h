#pragma once

#include "ICommand.h"
#include "Inventory/DeviceSelection.h"

#include <chrono>
#include <cstddef>
#include <string>

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
    /// expectedDevices, counted among those that the selection accepts, ends the wait early; 0 when their number is
    /// unknown. logFile is where to look when none answers.
    DiscoverCommand(std::chrono::milliseconds wait,
                    std::size_t expectedDevices,
                    Inventory::DeviceSelection selection,
                    std::string logFile);

    ExitStatus Run(DiscoverySession& session, MessageQueue& messages, Output& output) override;

private:
    ExitStatus Conclude(const Inventory::DeviceList& inventory, std::size_t shown, Output& output) const;

    const std::chrono::milliseconds wait;
    const std::size_t expectedDevices;
    const Inventory::DeviceSelection selection;
    const std::string logFile;
};
} // namespace Zent::Discovery::Console
