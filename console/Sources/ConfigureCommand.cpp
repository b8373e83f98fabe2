#include "ConfigureCommand.h"

#include "DeviceReader.h"
#include "Inventory/AddressText.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "Output.h"
#include "ServerSession.h"
#include "TextFile.h"
#include "system/Exception.h"

#include <stdexcept>
#include <utility>

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

bool Agrees(const std::optional<std::string>& wanted, const std::string& shown)
{
    return !wanted || Normal(*wanted) == Normal(shown);
}

std::optional<std::string> OptionalText(const JSONObject& object, const char* key)
{
    String text;
    return object.TryGetString(key, text) ? std::optional(std::string(text.View())) : std::nullopt;
}
} // namespace

ConfigureCommand::ConfigureCommand(std::chrono::milliseconds wait, std::string file)
    : wait(wait)
    , file(std::move(file))
{
}

ExitStatus ConfigureCommand::Run(ServerSession& session, Output& output)
{
    const std::string configurations = TextFile::Read(file);
    AllSettings missing = Read(configurations);
    session.ChangeIPConfigurations(configurations);
    for (const Settings& interface : missing)
    {
        session.RefreshClient(interface.MACAddress); // a device need not announce its new settings by itself
    }

    DeviceList done;
    DeviceReader reader(
        session.Messages(), [&output](const std::string& text) { output.Complain(text); }, wait);
    while (!missing.empty())
    {
        const std::optional<Device> device = reader.Next();
        if (!device)
        {
            break;
        }
        const auto isShown = [&device](const Settings& interface) {
            const Device::Interface* const found = device->FindMAC(interface.MACAddress);
            return found != nullptr && found->IPAddress == interface.IPAddress &&
                   Agrees(interface.SubNetMask, found->SubNetMask) &&
                   Agrees(interface.DefaultGateway, found->DefaultGateway) && Agrees(interface.MTU, found->MTU);
        };
        if (device->Message.Kind == DeviceMessage::MessageKind::Signature && std::erase_if(missing, isShown) > 0)
        {
            done.Add(*device);
        }
    }
    if (!done.Devices().empty())
    {
        output.Show(DeviceSelection().Of(done.Devices(), {}));
    }
    for (const Settings& interface : missing)
    {
        output.Complain(interface.MACAddress + " has not taken the settings with the address " + interface.IPAddress);
    }
    return reader.IsInterrupted() ? ExitStatus::Interrupted
           : missing.empty()      ? ExitStatus::Success
                                  : ExitStatus::NoAnswer;
}

ConfigureCommand::AllSettings ConfigureCommand::Read(const std::string& configurations) const
{
    AllSettings interfaces;
    try
    {
        const JSONArray array{String(std::string_view(configurations))};
        for (std::int32_t i = 0; i < array.Length(); ++i)
        {
            const JSONObject object = array.GetJSONObject(i);
            interfaces.push_back({AddressText::MAC(object.GetString("MACAddress").View()),
                                  AddressText::IP(object.GetString("IPAddress").View()),
                                  OptionalText(object, "SubNetMask"), OptionalText(object, "DefaultGateway"),
                                  OptionalText(object, "MTU")});
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
