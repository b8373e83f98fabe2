#include "DiscoverCommand.h"

#include "DeviceReader.h"
#include "Inventory/DeviceList.h"
#include "Output.h"

#include <cstdio>
#include <string>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceSelection;

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

DiscoverCommand::DiscoverCommand(std::chrono::milliseconds wait,
                                 std::size_t expectedDevices,
                                 DeviceSelection selection,
                                 std::string logFile)
    : wait(wait)
    , expectedDevices(expectedDevices)
    , selection(std::move(selection))
    , logFile(std::move(logFile))
{
}

ExitStatus DiscoverCommand::Run(DiscoverySession& session, MessageQueue& messages, Output& output)
{
    session.Discover();
    DeviceList inventory;
    DeviceReader reader(
        messages, [&output](const std::string& text) { output.Complain(text); }, wait);
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
    return reader.IsInterrupted() ? ExitStatus::Interrupted : Conclude(inventory, devices.size(), output);
}

ExitStatus DiscoverCommand::Conclude(const DeviceList& inventory, std::size_t shown, Output& output) const
{
    const std::size_t found = inventory.Devices().size();
    if (found == 0)
    {
        output.Complain("no device found; see the log " + logFile);
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
