#include "Commands/RequestCommands.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Inventory/AddressText.h"
#include "Show/Output.h"

#include <CLI/CLI.hpp>

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
namespace
{
bool Always(const Device& /*device*/)
{
    return true;
}
} // namespace

RequestCommand::Condition RequestCommand::OwnsMAC(const std::string& macAddress)
{
    return
        [address = AddressText::MAC(macAddress)](const Device& device) { return device.FindMAC(address) != nullptr; };
}

RequestCommand::Condition RequestCommand::OwnsIP(const std::string& ipAddress)
{
    return [address = AddressText::IP(ipAddress)](const Device& device) { return device.HasIP(address); };
}

ExitStatus RequestCommand::Await(CommandContext& context,
                                 const Condition& isFromDevice,
                                 const Condition& isDone,
                                 const std::string& failure)
{
    bool hasAnswered = false;
    DeviceReader reader(
        context.Messages(), [&context](const std::string& text) { context.Out().Complain(text); }, context.Wait());
    while (const std::optional<Device> device = reader.Next())
    {
        if (device->Message.Kind != DeviceMessage::MessageKind::Signature || !isFromDevice(*device))
        {
            continue;
        }
        if (isDone(*device))
        {
            context.Out().Show(*device);
            return ExitStatus::Success;
        }
        hasAnswered = true;
    }
    if (reader.IsInterrupted())
    {
        return ExitStatus::Interrupted;
    }
    context.Out().Complain(hasAnswered ? failure : "the device has not answered");
    return ExitStatus::NoAnswer;
}

CLI::App& RefreshCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("refresh", "ask the device with a MAC address for its signature");
    command.add_option("MAC", macAddress, "a MAC address of the device")->required()->type_name("");
    return command;
}

ExitStatus RefreshCommand::Run(CommandContext& context)
{
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    context.Requests().RefreshClient(macAddress);
    return Await(context, OwnsMAC(macAddress), &Always, "");
}

CLI::App& ReachCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("reach", "ask the device at an IP address for its signature");
    command.add_option("IP", ipAddress, "the IP address of the device")->required()->type_name("");
    return command;
}

ExitStatus ReachCommand::Run(CommandContext& context)
{
    if (!context.CanReach(ipAddress))
    {
        return ExitStatus::NoAnswer;
    }
    context.Requests().ReachClient(ipAddress);
    return Await(context, OwnsIP(ipAddress), &Always, "");
}

CLI::App& RenameCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("rename", "give a device a new host name");
    command.add_option("NAME", newHostName, "the new host name")->required()->type_name("");
    CLI::Option_group& target = *command.add_option_group("device");
    target.add_option("--mac", macAddress, "a MAC address of the device");
    target.add_option("--ip", ipAddress, "the IP address of the device")->check([](const std::string& text) {
        // Every device that hears it would take the one name.
        return AddressText::IP(text) == "255.255.255.255" ? text + " is the address of all devices" : "";
    });
    target.require_option(1);
    return command;
}

// A device need not announce its new name by itself, so each rename is followed by the question for it.
ExitStatus RenameCommand::Run(CommandContext& context)
{
    if (ipAddress.empty() ? !context.CanBroadcast() : !context.CanReach(ipAddress))
    {
        return ExitStatus::NoAnswer;
    }
    DiscoverySession& session = context.Requests();
    if (ipAddress.empty())
    {
        session.ChangeClientsHostName(newHostName, macAddress);
        session.RefreshClient(macAddress);
    }
    else
    {
        session.ChangeClientsHostNameWithIP(newHostName, ipAddress);
        session.ReachClient(ipAddress);
    }
    const auto isNamed = [this](const Device& device) { return device.HostName == newHostName; };
    return Await(context, ipAddress.empty() ? OwnsMAC(macAddress) : OwnsIP(ipAddress), isNamed,
                 "the device has not taken the name");
}
} // namespace Zent::Discovery::Console
