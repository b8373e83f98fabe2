#include "WatchCommand.h"

#include "DeviceReader.h"
#include "Inventory/DeviceList.h"
#include "LiveWatchView.h"
#include "Output.h"
#include "PlainWatchView.h"

#include <algorithm>
#include <iostream>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceSelection;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::milliseconds RefreshInterval{200};
constexpr std::chrono::minutes TimeAfterBye{1}; // for which a device that has left is still shown
constexpr std::size_t MaximumDevices = 10000;   // a sender of invented devices must not exhaust the memory
} // namespace

WatchCommand::WatchCommand(std::optional<std::chrono::milliseconds> time,
                           std::optional<std::chrono::milliseconds> interval,
                           DeviceSelection selection)
    : time(time)
    , interval(interval)
    , selection(std::move(selection))
{
}

ExitStatus WatchCommand::Run(DiscoverySession& session, MessageQueue& messages, Output& output)
{
    const Terminal terminal(Terminal::Stream::Output);
    return Watch(session, messages, *MakeView(terminal, output));
}

ExitStatus WatchCommand::Watch(DiscoverySession& session, MessageQueue& messages, IWatchView& view) const
{
    DeviceList inventory;
    DeviceReader reader(
        messages, [&view](const std::string& text) { view.Complain(text); }, time);
    MessageQueue::TimePoint nextRefresh = std::chrono::steady_clock::now();
    MessageQueue::TimePoint nextQuestion = nextRefresh;
    while (!reader.IsOver())
    {
        const MessageQueue::TimePoint now = std::chrono::steady_clock::now();
        if (interval && now >= nextQuestion)
        {
            session.Discover();
            nextQuestion = now + *interval;
        }
        if (now >= nextRefresh)
        {
            inventory.Forget(std::chrono::system_clock::now() - TimeAfterBye, MaximumDevices);
            view.Refresh(inventory);
            nextRefresh = now + RefreshInterval;
        }
        if (const std::optional<Device> device = reader.Next(nextRefresh))
        {
            const std::optional<Device> before = inventory.Add(*device);
            if (!view.Show(*device, before ? &*before : nullptr))
            {
                return ExitStatus::Failure;
            }
        }
    }
    view.End(inventory);
    return ExitStatus::Success; // interrupting is how to end it
}

std::unique_ptr<IWatchView> WatchCommand::MakeView(const Terminal& terminal, Output& output) const
{
    if (terminal.IsInteractive() && !output.IsJson())
    {
        return std::make_unique<LiveWatchView>(std::cout, terminal, output, selection, interval.has_value());
    }
    return std::make_unique<PlainWatchView>(output, selection);
}
} // namespace Zent::Discovery::Console
