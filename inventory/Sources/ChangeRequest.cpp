#include "Inventory/ChangeRequest.h"

#include "Discovery/MACAddress.h"
#include "Inventory/AddressText.h"
#include "Inventory/DeviceTable.h"
#include "Inventory/Network.h"
#include "Json/JSONObject.h"
#include "JsonText.h"
#include "StandardErrors.h"

#include <bit>
#include <stdexcept>
#include <utility>

using Nfx::System::String;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Inventory
{
namespace
{
constexpr const char* UnknownMTU = "Unknown"; // as the library has it

std::string NormalMAC(const std::string& text)
{
    std::string normal = AddressText::MAC(text);
    try
    {
        WithStandardErrors([&normal] { MACAddress::ParseText(normal); });
    }
    catch (const std::invalid_argument&)
    {
        throw std::invalid_argument('"' + text + "\" is no MAC address, such as 00:1A:2B:3C:4D:5E");
    }
    return normal;
}

std::string NormalIP(const std::string& text)
{
    const std::optional<IPv4> address = Network::ParseAddress(text);
    if (!address)
    {
        throw std::invalid_argument('"' + text + "\" is no IPv4 address, such as 10.0.0.7");
    }
    return Network::TextOf(*address);
}

std::string NormalGateway(const std::string& text)
{
    const std::string normal = text.empty() ? text : NormalIP(text);
    return normal == "0.0.0.0" ? "" : normal;
}

/// What a device shows need not be an address.
bool IsSameAddress(const std::string& wanted, const std::string& shown)
{
    return Network::ParseAddress(wanted) == Network::ParseAddress(shown);
}

bool IsSameGateway(const std::string& wanted, const std::string& shown)
{
    const IPv4 none = 0;
    return Network::ParseAddress(wanted).value_or(none) == Network::ParseAddress(shown).value_or(none);
}

/// Adds what an interface has but for its MAC address.
std::string SettingsJson(JsonText json, const Device::Interface& interface)
{
    return json.Text("FriendlyName", interface.FriendlyName)
        .Text("IPAddress", interface.IPAddress)
        .Text("SubNetMask", interface.SubNetMask)
        .Text("DefaultGateway", interface.DefaultGateway)
        .Text("MTU", interface.MTU)
        .Take();
}

/// The members of a request. All are texts.
class Members final
{
public:
    explicit Members(std::string_view json)
        : object(String(json))
    {
        for (const String& key : object.Keys())
        {
            String text;
            if (!object.TryGetString(std::string(key.View()).c_str(), text))
            {
                throw std::invalid_argument("the request's \"" + std::string(key.View()) + "\" is no text");
            }
        }
    }

    /// Each may be taken once.
    std::optional<std::string> Take(const char* key)
    {
        String text;
        if (!object.TryGetString(key, text))
        {
            return std::nullopt;
        }
        ++taken;
        return std::string(text.View());
    }

    std::string Require(const char* key)
    {
        std::optional<std::string> text = Take(key);
        return text ? *std::move(text) : throw std::invalid_argument("the request has no \"" + std::string(key) + "\"");
    }

    void RefuseOthers() const
    {
        if (taken != object.Keys().Count())
        {
            throw std::invalid_argument("the request has members that do not belong together");
        }
    }

private:
    const JSONObject object;
    std::int32_t taken = 0;
};

ChangeRequest Read(Members& members)
{
    const std::optional<std::string> name = members.Take("HostName");
    const std::optional<std::string> macAddress = members.Take("MACAddress");
    if (name)
    {
        return macAddress ? ChangeRequest::Rename(*macAddress, *name)
                          : ChangeRequest::RenameAt(members.Require("IPAddress"), *name);
    }
    return ChangeRequest::Configure({.MACAddress = macAddress ? *macAddress : members.Require("MACAddress"),
                                     .IPAddress = members.Require("IPAddress"),
                                     .SubNetMask = members.Require("SubNetMask"),
                                     .DefaultGateway = members.Require("DefaultGateway"),
                                     .MTU = members.Take("MTU").value_or(""),
                                     .FriendlyName = members.Take("FriendlyName").value_or("")});
}
} // namespace

ChangeRequest ChangeRequest::Rename(std::string macAddress, std::string hostName)
{
    return {ChangeKind::Rename, std::move(hostName), {.MACAddress = std::move(macAddress), .IPAddress = {}}};
}

ChangeRequest ChangeRequest::RenameAt(std::string ipAddress, std::string hostName)
{
    return {ChangeKind::RenameAt, std::move(hostName), {.MACAddress = {}, .IPAddress = std::move(ipAddress)}};
}

ChangeRequest ChangeRequest::Configure(Device::Interface settings)
{
    return {ChangeKind::Configure, {}, std::move(settings)};
}

ChangeRequest ChangeRequest::Parse(std::string_view json)
{
    return WithStandardErrors([json] {
        Members members(json);
        const ChangeRequest request = Read(members);
        members.RefuseOthers();
        return request.Normal();
    });
}

ChangeRequest ChangeRequest::Normal() const
{
    ChangeRequest normal = *this;
    Device::Interface& interface = normal.Interface;
    if (Kind == ChangeKind::RenameAt)
    {
        interface.IPAddress = NormalIP(interface.IPAddress);
        return normal;
    }
    interface.MACAddress = NormalMAC(interface.MACAddress);
    if (Kind == ChangeKind::Configure)
    {
        interface.IPAddress = NormalIP(interface.IPAddress);
        interface.SubNetMask = NormalIP(interface.SubNetMask);
        interface.DefaultGateway = NormalGateway(interface.DefaultGateway);
        interface.MTU = interface.MTU.empty() ? UnknownMTU : interface.MTU;
    }
    return normal;
}

const DeviceRow* ChangeRequest::TargetIn(const DeviceTable& devices) const
{
    if (Kind != ChangeKind::RenameAt)
    {
        return devices.Find(Interface.MACAddress);
    }
    const DeviceRow* target = nullptr;
    for (const DeviceRow* const row : devices.Rows())
    {
        if (row->IsHere() && IsAbout(*row->Latest))
        {
            target = row;
        }
    }
    return target;
}

bool ChangeRequest::IsAbout(const Device& device) const
{
    return Kind == ChangeKind::RenameAt ? device.HasIP(Interface.IPAddress)
                                        : device.FindMAC(Interface.MACAddress) != nullptr;
}

bool ChangeRequest::IsShownBy(const Device& device) const
{
    if (Kind != ChangeKind::Configure)
    {
        return device.HostName == HostName;
    }
    const Device::Interface* const shown = device.FindMAC(Interface.MACAddress);
    return shown != nullptr && IsSameAddress(Interface.IPAddress, shown->IPAddress) &&
           IsSameAddress(Interface.SubNetMask, shown->SubNetMask) &&
           IsSameGateway(Interface.DefaultGateway, shown->DefaultGateway) &&
           (Interface.MTU == UnknownMTU || Interface.MTU == shown->MTU);
}

bool ChangeRequest::NeedsReboot(const Device& device) const
{
    return Kind == ChangeKind::Configure ? device.RebootRequiredForIPConfigChange
                                         : device.RebootRequiredForHostNameChange;
}

std::string ChangeRequest::SettingsOf(const Device& device) const
{
    ChangeRequest shown = *this;
    shown.HostName = device.HostName;
    if (const Device::Interface* const interface = device.FindMAC(Interface.MACAddress))
    {
        shown.Interface = *interface;
    }
    return shown.Settings();
}

std::string ChangeRequest::Settings() const
{
    return Kind == ChangeKind::Configure ? SettingsJson(JsonText(), Interface)
                                         : JsonText().Text("HostName", HostName).Take();
}

std::string ChangeRequest::ToJson() const
{
    JsonText json;
    const bool isAt = Kind == ChangeKind::RenameAt;
    json.Text(isAt ? "IPAddress" : "MACAddress", isAt ? Interface.IPAddress : Interface.MACAddress);
    return Kind == ChangeKind::Configure ? SettingsJson(std::move(json), Interface)
                                         : json.Text("HostName", HostName).Take();
}

std::string ChangeRequest::ToString() const
{
    if (Kind != ChangeKind::Configure)
    {
        return "the name \"" + HostName + '"';
    }
    const std::string gateway =
        Interface.DefaultGateway.empty() ? "without a gateway" : "with the gateway " + Interface.DefaultGateway;
    const IPv4 mask = Network::ParseAddress(Interface.SubNetMask).value_or(0);
    return "the address " + Interface.IPAddress + "/" + std::to_string(std::popcount(mask)) + " " + gateway +
           (Interface.MTU.empty() || Interface.MTU == UnknownMTU ? "" : ", MTU " + Interface.MTU);
}

std::string ChangeRequest::ToNicConfigs() const
{
    return '[' + ToJson() + ']';
}
} // namespace Zent::Discovery::Inventory
