#include "Discovery/NICConfig.h"

#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

using Nfx::System::String;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;
namespace Net = Nfx::System::Net; // the fields hide the class names

namespace Zent::Discovery
{
namespace
{
const char FriendlyNameKey[] = "FriendlyName";
const char MACAddressKey[] = "MACAddress";
const char IPAddressKey[] = "IPAddress";
const char SubNetMaskKey[] = "SubNetMask";
const char DefaultGatewayKey[] = "DefaultGateway";
const char MTUKey[] = "MTU";
} // namespace

bool NICConfig::IsComplete(const JSONObject& json)
{
    return json.HasString(FriendlyNameKey) && json.HasString(MACAddressKey) && json.HasString(IPAddressKey) &&
           json.HasString(SubNetMaskKey) && json.HasString(DefaultGatewayKey);
}

void NICConfig::Serialize(JSONStringer& stringer) const
{
    stringer.Object();
    stringer.Key(FriendlyNameKey);
    stringer.Value(FriendlyName);
    stringer.Key(MACAddressKey);
    stringer.Value(MACAddress.ToString());
    stringer.Key(IPAddressKey);
    stringer.Value(IPAddress.ToString());
    stringer.Key(SubNetMaskKey);
    stringer.Value(SubNetMask.ToString());
    stringer.Key(DefaultGatewayKey);
    stringer.Value(HasDefaultGateway ? DefaultGateway.ToString() : String());
    stringer.Key(MTUKey);
    stringer.Value(MTU);
    stringer.EndObject();
}

String NICConfig::ToJson() const
{
    return IJSONSerializable::ToJson();
}

void NICConfig::Deserialize(const String& json)
{
    ReadFrom(JSONObject(json));
}

void NICConfig::ReadFrom(const JSONObject& json)
{
    FriendlyName = json.GetString(FriendlyNameKey);
    MACAddress = MACAddress::Parse(json.GetString(MACAddressKey));
    IPAddress = Net::IPAddress::Parse(json.GetString(IPAddressKey));
    SubNetMask = Net::IPAddress::Parse(json.GetString(SubNetMaskKey));

    const String gateway = json.GetString(DefaultGatewayKey);
    HasDefaultGateway = !gateway.IsEmpty();
    DefaultGateway = HasDefaultGateway ? Net::IPAddress::Parse(gateway) : Net::IPAddress::Empty();

    MTU = "Unknown";
    json.TryGetString(MTUKey, MTU);
}
} // namespace Zent::Discovery
