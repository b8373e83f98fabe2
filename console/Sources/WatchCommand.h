#pragma once

#include "ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Terminal.h"

#include <chrono>
#include <memory>
#include <optional>

namespace Zent::Discovery::Console
{
class IWatchView;

/// Shows devices as their messages come: in a live table on a terminal, else message by message.
class WatchCommand final : public ICommand
{
public:
    /// Watches until the user interrupts when no time is given, and asks all devices for their signatures at the start
    /// and every so often when an interval is given.
    WatchCommand(std::optional<std::chrono::milliseconds> time,
                 std::optional<std::chrono::milliseconds> interval,
                 Inventory::DeviceSelection selection);

    ExitStatus Run(DiscoverySession& session, MessageQueue& messages, Output& output) override;

private:
    ExitStatus Watch(DiscoverySession& session, MessageQueue& messages, IWatchView& view) const;
    std::unique_ptr<IWatchView> MakeView(const Terminal& terminal, Output& output) const;

    const std::optional<std::chrono::milliseconds> time;
    const std::optional<std::chrono::milliseconds> interval;
    const Inventory::DeviceSelection selection;
};
} // namespace Zent::Discovery::Console
