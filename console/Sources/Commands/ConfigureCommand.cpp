#include "Commands/ConfigureCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Inventory/AddressText.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "Show/Output.h"
#include "Text/TextFile.h"
#include "system/Exception.h"

#include <CLI/CLI.hpp>

#include <stdexcept>

using Nfx::System::String;
using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Console
{
namespace
{
/// The form in which two texts for the same setting are equal; no gateway is written in two ways.
std::string Normal(const std::string& text)
{
    const std::string result = text.empty() ? text : AddressText::IP(text);
    return result == "0.0.0.0" ? "" : result;
}

bool Agrees(const std::string& wanted, const std::string& shown)
{
    return Normal(wanted) == Normal(shown);
}

std::string Text(const JSONObject& object, const char* key)
{
    return std::string(object.GetString(key).View());
}

NICSettings SettingsOf(const JSONObject& object)
{
    NICSettings settings{Text(object, "FriendlyName"), Text(object, "MACAddress"), Text(object, "IPAddress"),
                         Text(object, "SubNetMask"), Text(object, "DefaultGateway")};
    String text;
    if (object.TryGetString("MTU", text))
    {
        settings.MTU = std::string(text.View());
    }
    return settings;
}

/// An interface may keep an MTU that the settings do not tell.
bool Shows(const Device& device, const NICSettings& settings)
{
    const Device::Interface* const found = device.FindMAC(AddressText::MAC(settings.MACAddress));
    return found != nullptr && Agrees(settings.IPAddress, found->IPAddress) &&
           Agrees(settings.SubNetMask, found->SubNetMask) && Agrees(settings.DefaultGateway, found->DefaultGateway) &&
           (settings.MTU == NICSettings().MTU || settings.MTU == found->MTU);
}
} // namespace

CLI::App& ConfigureCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("configure", "give network interfaces of devices new settings");
    command.add_option("FILE", file, "a JSON array of interfaces")->required()->type_name("");
    return command;
}

ExitStatus ConfigureCommand::Run(CommandContext& context)
{
    Output& output = context.Out();
    std::vector<NICSettings> missing = Read();
    if (!context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    DiscoverySession& session = context.Requests();
    session.ChangeClientsIPConfigurations(missing);
    for (const NICSettings& interface : missing)
    {
        session.RefreshClient(interface.MACAddress); // a device need not announce its new settings by itself
    }

    DeviceList done;
    DeviceReader reader(
        context.Messages(), [&output](const std::string& text) { output.Complain(text); }, context.Wait());
    while (!missing.empty())
    {
        const std::optional<Device> device = reader.Next();
        if (!device)
        {
            break;
        }
        const auto isShown = [&device](const NICSettings& interface) { return Shows(*device, interface); };
        if (device->Message.Kind == DeviceMessage::MessageKind::Signature && std::erase_if(missing, isShown) > 0)
        {
            done.Add(*device);
        }
    }
    if (!done.Devices().empty())
    {
        output.Show(DeviceSelection().Of(done.Devices(), {}));
    }
    for (const NICSettings& interface : missing)
    {
        output.Complain(AddressText::MAC(interface.MACAddress) + " has not taken the settings with the address " +
                        AddressText::IP(interface.IPAddress));
    }
    return reader.IsInterrupted() ? ExitStatus::Interrupted
           : missing.empty()      ? ExitStatus::Success
                                  : ExitStatus::NoAnswer;
}

std::vector<NICSettings> ConfigureCommand::Read() const
{
    std::vector<NICSettings> interfaces;
    try
    {
        const JSONArray array{String(std::string_view(TextFile::Read(file)))};
        for (std::int32_t i = 0; i < array.Length(); ++i)
        {
            interfaces.push_back(SettingsOf(array.GetJSONObject(i)));
        }
    }
    catch (const Nfx::System::Exception&)
    {
        throw std::runtime_error(file + " is no JSON array of objects with MACAddress, IPAddress, SubNetMask, " +
                                 "DefaultGateway and FriendlyName; the manual shows one");
    }
    return interfaces;
}
} // namespace Zent::Discovery::Console
