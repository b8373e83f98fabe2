#include "Commands/DiscoverCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Commands/SharedOptions.h"
#include "Inventory/DeviceList.h"
#include "Show/Output.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::milliseconds StatusInterval{100};

std::string Counted(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " device" : " devices");
}

std::string StatusText(std::size_t count, std::chrono::steady_clock::duration elapsed, std::chrono::milliseconds wait)
{
    using Seconds = std::chrono::duration<double>;
    char text[64];
    const int length = std::snprintf(text, sizeof(text), "Waiting for answers: %.1f of %g s, ",
                                     Seconds(elapsed).count(), Seconds(wait).count());
    return std::string(text, static_cast<std::size_t>(length)) + Counted(count);
}
} // namespace

CLI::App& DiscoverCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("discover", "ask all devices for their signatures");
    command.add_option("--expect", expectedDevices, "stop waiting when so many devices have answered")
        ->type_name("COUNT")
        ->check(CLI::Range(1, 100000).description(""));
    SharedOptions::AddSelection(command, selection);
    return command;
}

ExitStatus DiscoverCommand::Run(CommandContext& context)
{
    Output& output = context.Out();
    const std::chrono::milliseconds wait = context.Wait();
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    context.Requests().Discover();
    DeviceList inventory;
    DeviceReader reader(
        context.Messages(), [&output](const std::string& text) { output.Complain(text); }, wait);
    const MessageQueue::TimePoint start = std::chrono::steady_clock::now();
    std::size_t accepted = 0;
    while (!reader.IsOver() && (expectedDevices == 0 || accepted < expectedDevices))
    {
        const MessageQueue::TimePoint now = std::chrono::steady_clock::now();
        output.ShowStatus(StatusText(inventory.Devices().size(), now - start, wait));
        if (std::optional<Device> device = reader.Next(now + StatusInterval))
        {
            const bool isAccepted = selection.Accepts(*device, std::chrono::system_clock::now());
            const std::optional<Device> before = inventory.Add(std::move(*device));
            accepted += isAccepted ? 1u : 0u;
            accepted -= before && selection.Accepts(*before, std::chrono::system_clock::now()) ? 1u : 0u;
        }
    }
    const std::vector<const Device*> devices = selection.Of(inventory.Devices(), std::chrono::system_clock::now());
    if (!devices.empty())
    {
        output.Show(devices);
    }
    return reader.IsInterrupted() ? ExitStatus::Interrupted : Conclude(inventory, devices.size(), context);
}

ExitStatus DiscoverCommand::Conclude(const DeviceList& inventory, std::size_t shown, CommandContext& context) const
{
    Output& output = context.Out();
    const std::size_t found = inventory.Devices().size();
    if (found == 0)
    {
        output.Complain("no device found; see the log " + context.Options().Session.LogFile);
        return ExitStatus::NoAnswer;
    }
    if (shown < expectedDevices)
    {
        output.Complain("only " + std::to_string(shown) + " of " + std::to_string(expectedDevices) + " devices found");
        return ExitStatus::NoAnswer;
    }
    if (shown == 0)
    {
        output.Complain(Counted(found) + " found, but none that --filter accepts");
        return ExitStatus::NoAnswer;
    }
    output.Conclude(Counted(found) + " found" + (shown < found ? ", " + std::to_string(shown) + " shown" : ""));
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
