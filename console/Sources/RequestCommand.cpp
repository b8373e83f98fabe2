#include "RequestCommand.h"

#include "DeviceReader.h"
#include "Inventory/AddressText.h"
#include "Output.h"

#include <utility>

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
namespace
{
RequestCommand::Condition OwnsMAC(const std::string& macAddress)
{
    return
        [address = AddressText::MAC(macAddress)](const Device& device) { return device.FindMAC(address) != nullptr; };
}

RequestCommand::Condition OwnsIP(const std::string& ipAddress)
{
    return [address = AddressText::IP(ipAddress)](const Device& device) { return device.HasIP(address); };
}

RequestCommand::Condition IsNamed(const std::string& hostName)
{
    return [hostName](const Device& device) { return device.HostName == hostName; };
}

bool Always(const Device& /*device*/)
{
    return true;
}

const char NameRefused[] = "the device has not taken the name";
} // namespace

RequestCommand::RequestCommand(
    std::chrono::milliseconds wait, Request send, Condition isFromDevice, Condition isDone, std::string failure)
    : wait(wait)
    , send(std::move(send))
    , isFromDevice(std::move(isFromDevice))
    , isDone(std::move(isDone))
    , failure(std::move(failure))
{
}

RequestCommand RequestCommand::Refresh(std::chrono::milliseconds wait, const std::string& macAddress)
{
    return {wait, [=](DiscoverySession& session) { session.RefreshClient(macAddress); }, OwnsMAC(macAddress), &Always,
            ""};
}

RequestCommand RequestCommand::Reach(std::chrono::milliseconds wait, const std::string& ipAddress)
{
    return {wait, [=](DiscoverySession& session) { session.ReachClient(ipAddress); }, OwnsIP(ipAddress), &Always, ""};
}

// A device need not announce its new name by itself, so each rename is followed by the question for it.

RequestCommand RequestCommand::RenameMAC(std::chrono::milliseconds wait,
                                         const std::string& newHostName,
                                         const std::string& macAddress)
{
    const Request send = [=](DiscoverySession& session) {
        session.ChangeClientsHostName(newHostName, macAddress);
        session.RefreshClient(macAddress);
    };
    return {wait, send, OwnsMAC(macAddress), IsNamed(newHostName), NameRefused};
}

RequestCommand RequestCommand::RenameIP(std::chrono::milliseconds wait,
                                        const std::string& newHostName,
                                        const std::string& ipAddress)
{
    const Request send = [=](DiscoverySession& session) {
        session.ChangeClientsHostNameWithIP(newHostName, ipAddress);
        session.ReachClient(ipAddress);
    };
    return {wait, send, OwnsIP(ipAddress), IsNamed(newHostName), NameRefused};
}

ExitStatus RequestCommand::Run(DiscoverySession& session, MessageQueue& messages, Output& output)
{
    send(session);
    bool hasAnswered = false;
    DeviceReader reader(
        messages, [&output](const std::string& text) { output.Complain(text); }, wait);
    while (const std::optional<Device> device = reader.Next())
    {
        if (device->Message.Kind != DeviceMessage::MessageKind::Signature || !isFromDevice(*device))
        {
            continue;
        }
        if (isDone(*device))
        {
            output.Show(*device);
            return ExitStatus::Success;
        }
        hasAnswered = true;
    }
    if (reader.IsInterrupted())
    {
        return ExitStatus::Interrupted;
    }
    output.Complain(hasAnswered ? failure : "the device has not answered");
    return ExitStatus::NoAnswer;
}
} // namespace Zent::Discovery::Console
