#include "Commands/RequestCommands.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Commands/SharedOptions.h"
#include "Inventory/AddressText.h"
#include "Show/Output.h"

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
RequestCommand::Condition RequestCommand::OwnsMAC(const std::string& macAddress)
{
    return
        [address = AddressText::MAC(macAddress)](const Device& device) { return device.FindMAC(address) != nullptr; };
}

RequestCommand::Condition RequestCommand::OwnsIP(const std::string& ipAddress)
{
    return [address = AddressText::IP(ipAddress)](const Device& device) { return device.HasIP(address); };
}

ExitStatus RequestCommand::Await(CommandContext& context, const Condition& isFromDevice)
{
    DeviceReader reader(
        context.Messages(), [&context](const std::string& text) { context.Out().Complain(text); }, context.Wait());
    while (const std::optional<Device> device = reader.Next())
    {
        if (device->Message.Kind == DeviceMessage::MessageKind::Signature && isFromDevice(*device))
        {
            context.Out().Show(*device);
            return ExitStatus::Success;
        }
    }
    if (reader.IsInterrupted())
    {
        return ExitStatus::Interrupted;
    }
    context.Out().Complain("the device has not answered");
    return ExitStatus::NoAnswer;
}

CLI::App& RefreshCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "refresh", "ask the device with a MAC address for its signature");
    arguments.AddPositional("MAC", macAddress, "a MAC address of the device").MustPass(&SharedOptions::WrongWithMAC);
    return arguments.Command();
}

ExitStatus RefreshCommand::Run(CommandContext& context)
{
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    context.Requests().RefreshClient(AddressText::MAC(macAddress));
    return Await(context, OwnsMAC(macAddress));
}

CLI::App& ReachCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "reach", "ask the device at an IP address for its signature");
    arguments.AddPositional("IP", ipAddress, "the IP address of the device").MustPass(&SharedOptions::WrongWithIP);
    return arguments.Command();
}

ExitStatus ReachCommand::Run(CommandContext& context)
{
    if (!context.CanReach(ipAddress))
    {
        return ExitStatus::NoAnswer;
    }
    context.Requests().ReachClient(ipAddress);
    return Await(context, OwnsIP(ipAddress));
}
} // namespace Zent::Discovery::Console
