#include "Commands/ConfigureCommand.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Inventory/AddressText.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Programs/WrongArgument.h"
#include "Show/Output.h"
#include "Text/JsonFile.h"
#include "Text/TextFile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Discovery::Inventory::Network;
using Zent::Discovery::Programs::WrongArgument;

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

/// The text of a member, whose name is matched without regard to ASCII letter case as the library matches it; nothing
/// when there is none.
/// @throws WrongArgument when it is no text.
std::optional<std::string> FindText(const JsonFile::Object& object, std::string_view name)
{
    const auto isSame = [](char left, char right) { return std::tolower(left) == std::tolower(right); };
    for (const auto& [key, value] : object.Value.items())
    {
        if (std::ranges::equal(key, name, isSame))
        {
            if (!value.is_string())
            {
                throw WrongArgument(object.Place + ": \"" + key + "\" is no text");
            }
            return value.get<std::string>();
        }
    }
    return std::nullopt;
}

std::string Text(const JsonFile::Object& object, const std::string& name)
{
    const std::optional<std::string> text = FindText(object, name);
    if (!text)
    {
        throw WrongArgument(object.Place + ": the interface has no \"" + name + "\"");
    }
    return *text;
}

std::string Address(const JsonFile::Object& object, const std::string& name)
{
    std::string text = Text(object, name);
    const bool isNone = name == "DefaultGateway" && text.empty();
    if (!isNone && !Network::ParseAddress(text))
    {
        throw WrongArgument(object.Place + ": \"" + name + "\" is no IPv4 address: \"" + text + "\"");
    }
    return text;
}

NICSettings SettingsOf(const JsonFile::Object& object)
{
    return {Text(object, "FriendlyName"),      Text(object, "MACAddress"),
            Address(object, "IPAddress"),      Address(object, "SubNetMask"),
            Address(object, "DefaultGateway"), FindText(object, "MTU").value_or(NICSettings().MTU)};
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
    for (const JsonFile::Object& object : JsonFile::Read(TextFile::Read(file), file))
    {
        interfaces.push_back(SettingsOf(object));
    }
    if (interfaces.empty())
    {
        throw WrongArgument(file + " has no settings of an interface; the manual shows some");
    }
    return interfaces;
}
} // namespace Zent::Discovery::Console
