#include "Commands/WatchCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Commands/SharedOptions.h"
#include "Doctor/Examination.h"
#include "Inventory/DeviceList.h"
#include "Show/LiveWatchView.h"
#include "Show/Output.h"
#include "Show/PlainWatchView.h"

#include <CLI/CLI.hpp>

#include <iostream>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::milliseconds RefreshInterval{200};
constexpr std::chrono::minutes TimeAfterBye{1}; // for which a device that has left is still shown
constexpr std::chrono::seconds Patience{3};     // after which nobody's answer to the first question calls for a reason
constexpr std::size_t MaximumDevices = 10000;   // a sender of invented devices must not exhaust the memory
} // namespace

CLI::App& WatchCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand(
        "watch", "show devices as they come, change and leave, until Ctrl-C: on a terminal in a live table");
    SharedOptions::AddSeconds(command, "--every", interval,
                              "ask all devices at the start and again after so many seconds", 1.0);
    SharedOptions::AddSelection(command, selection);
    return command;
}

ExitStatus WatchCommand::Run(CommandContext& context)
{
    const Terminal terminal(Terminal::Stream::Output);
    return Watch(context, *MakeView(terminal, context.Out()));
}

ExitStatus WatchCommand::Watch(CommandContext& context, IWatchView& view) const
{
    DiscoverySession& session = context.Requests();
    unsigned knownChanges = 0; // of the interfaces
    DeviceList inventory;
    DeviceReader reader(
        context.Messages(), [&view](const std::string& text) { view.Complain(text); }, context.Options().Wait);
    MessageQueue::TimePoint nextRefresh = std::chrono::steady_clock::now();
    MessageQueue::TimePoint nextQuestion = nextRefresh;
    std::optional<MessageQueue::TimePoint> endOfPatience;
    bool isExplained = false;
    while (!reader.IsOver())
    {
        const MessageQueue::TimePoint now = std::chrono::steady_clock::now();
        const unsigned changes = context.Session().InterfaceChanges();
        if ((interval && now >= nextQuestion) || changes != knownChanges)
        {
            session.Discover();
            knownChanges = changes;
            endOfPatience = endOfPatience.value_or(now + Patience);
            nextQuestion = now + interval.value_or(std::chrono::milliseconds(0));
        }
        if (now >= nextRefresh)
        {
            inventory.Forget(std::chrono::system_clock::now() - TimeAfterBye, MaximumDevices);
            view.Refresh(inventory);
            nextRefresh = now + RefreshInterval;
        }
        if (!isExplained && endOfPatience && now >= *endOfPatience && inventory.Devices().empty())
        {
            view.Complain("no device has answered. " +
                          Doctor::Examination::ReasonForSilence(context.Options(), Patience.count()));
            isExplained = true;
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
