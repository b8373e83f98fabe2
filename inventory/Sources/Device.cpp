#include "Inventory/Device.h"

#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "MemberText.h"
#include "StandardErrors.h"
#include "system/Boolean.h"

#include <algorithm>
#include <utility>

using Nfx::System::Boolean;
using Nfx::System::String;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery::Inventory
{
namespace
{
bool Flag(const JSONObject& object, const char* key, bool otherwise)
{
    Boolean flag;
    return object.TryGetBoolean(key, flag) ? static_cast<bool>(flag) : otherwise;
}

Device::Interface InterfaceOf(const JSONObject& object)
{
    return {MemberText(object, "MACAddress"),     MemberText(object, "IPAddress"), MemberText(object, "SubNetMask"),
            MemberText(object, "DefaultGateway"), MemberText(object, "MTU"),       MemberText(object, "FriendlyName")};
}

/// Calls action(element) for each object in the array member.
template <class TAction>
void ForEachObject(const JSONObject& object, const char* key, TAction&& action)
{
    JSONArray array;
    object.TryGetJSONArray(key, array);
    for (std::int32_t i = 0; i < array.Length(); ++i)
    {
        JSONObject element;
        if (array.TryGetJSONObject(i, element))
        {
            action(element);
        }
    }
}
} // namespace

bool Device::Interface::HasMACAddress() const
{
    return MACAddress.find_first_not_of("0:") != std::string::npos;
}

Device::Device(DeviceMessage message)
    : Message(std::move(message))
{
    WithStandardErrors([this] { Read(); });
}

void Device::Read()
{
    const JSONObject document{String(std::string_view(Message.Document))};
    JSONObject source;
    if (document.TryGetJSONObject("SourceNIC", source))
    {
        interfaces.push_back(InterfaceOf(source));
    }
    const JSONObject host = document.GetJSONObject("Host");
    HostName = MemberText(host, "HostName");
    Type = MemberText(host, "DeviceType");
    Family = MemberText(host, "DeviceFamily");
    SerialNumber = MemberText(host, "SerialNumber");
    IsHostNameReadOnly = Flag(host, "IsHostNameReadOnly", true);
    RebootRequiredForHostNameChange = Flag(host, "RebootRequiredForHostNameChange", false);
    RebootRequiredForIPConfigChange = Flag(host, "RebootRequiredForIPConfigChange", false);
    ForEachObject(host, "NICs", [this](const JSONObject& nic) { interfaces.push_back(InterfaceOf(nic)); });
    ForEachObject(host, "Products", [this](const JSONObject& product) {
        Products.push_back({MemberText(product, "ProductName"), MemberText(product, "ProductVersion")});
    });
}

const Device::Interface& Device::MainInterface() const
{
    static const Interface None;
    return interfaces.empty() ? None : interfaces.front();
}

const std::vector<Device::Interface>& Device::Interfaces() const
{
    return interfaces;
}

const Device::Interface* Device::FindMAC(std::string_view address) const
{
    const auto found = std::ranges::find(interfaces, address, &Interface::MACAddress);
    return found == interfaces.end() ? nullptr : &*found;
}

bool Device::HasIP(std::string_view address) const
{
    return std::ranges::find(interfaces, address, &Interface::IPAddress) != interfaces.end();
}

bool Device::IsSameAs(const Device& other) const
{
    if (interfaces.empty() || other.interfaces.empty())
    {
        return HostName == other.HostName && SerialNumber == other.SerialNumber;
    }
    return FindMAC(other.MainInterface().MACAddress) != nullptr;
}
} // namespace Zent::Discovery::Inventory
