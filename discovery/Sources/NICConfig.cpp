#include "Discovery/NICConfig.h"

#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

#include <algorithm>
#include <iterator>

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

void ReadDefaultGateway(NICConfig& config, const String& text)
{
    config.HasDefaultGateway = !text.IsEmpty();
    config.DefaultGateway = text.IsEmpty() ? Net::IPAddress::Empty() : Net::IPAddress::Parse(text);
}

struct RequiredMember
{
    const char* Key;
    void (*Read)(NICConfig& config, const String& text);
};

constexpr RequiredMember RequiredMembers[] = {
    {FriendlyNameKey, [](NICConfig& config, const String& text) { config.FriendlyName = text; }},
    {MACAddressKey, [](NICConfig& config, const String& text) { config.MACAddress = MACAddress::Parse(text); }},
    {IPAddressKey, [](NICConfig& config, const String& text) { config.IPAddress = Net::IPAddress::Parse(text); }},
    {SubNetMaskKey, [](NICConfig& config, const String& text) { config.SubNetMask = Net::IPAddress::Parse(text); }},
    {DefaultGatewayKey, &ReadDefaultGateway},
};
} // namespace

bool NICConfig::IsComplete(const JSONObject& json)
{
    return std::all_of(std::begin(RequiredMembers), std::end(RequiredMembers),
                       [&json](const RequiredMember& member) { return json.HasString(member.Key); });
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
    for (const RequiredMember& member : RequiredMembers)
    {
        member.Read(*this, json.GetString(member.Key));
    }
    MTU = "Unknown";
    json.TryGetString(MTUKey, MTU);
}
} // namespace Zent::Discovery
