#include "Discovery/NICConfig.h"

#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

#include <algorithm>
#include <iterator>
#include <string_view>

using Nfx::System::String;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;
namespace Net = Nfx::System::Net; // the fields hide the class names

namespace Zent::Discovery
{
namespace
{
constexpr JSONKey FriendlyNameKey("FriendlyName");
constexpr JSONKey MACAddressKey("MACAddress");
constexpr JSONKey IPAddressKey("IPAddress");
constexpr JSONKey SubNetMaskKey("SubNetMask");
constexpr JSONKey DefaultGatewayKey("DefaultGateway");
constexpr JSONKey MTUKey("MTU");

Net::IPAddress ParseIPAddress(std::string_view text)
{
    return Net::IPAddress::Parse(String(text));
}

void ReadDefaultGateway(NICConfig& config, std::string_view text)
{
    config.HasDefaultGateway = !text.empty();
    config.DefaultGateway = text.empty() ? Net::IPAddress::Empty() : ParseIPAddress(text);
}

struct RequiredMember
{
    JSONKey Key;
    void (*Read)(NICConfig& config, std::string_view text);
};

constexpr RequiredMember RequiredMembers[] = {
    {FriendlyNameKey, [](NICConfig& config, std::string_view text) { config.FriendlyName = String(text); }},
    {MACAddressKey, [](NICConfig& config, std::string_view text) { config.MACAddress = MACAddress::ParseText(text); }},
    {IPAddressKey, [](NICConfig& config, std::string_view text) { config.IPAddress = ParseIPAddress(text); }},
    {SubNetMaskKey, [](NICConfig& config, std::string_view text) { config.SubNetMask = ParseIPAddress(text); }},
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
    const auto macAddress = MACAddress.ToText();
    stringer.Value(std::string_view(macAddress.data(), macAddress.size()));
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
        member.Read(*this, json.GetText(member.Key));
    }
    MTU = "Unknown";
    json.TryGetString(MTUKey, MTU);
}
} // namespace Zent::Discovery
