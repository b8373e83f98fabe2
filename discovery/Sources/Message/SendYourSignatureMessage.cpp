#include "Discovery/Message/SendYourSignatureMessage.h"

#include "Discovery/ComponentLog.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

using Nfx::System::String;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/SendYourSignatureMessage";
constexpr JSONKey TargetedMACAddressKey("TargetedMACAddress");

constexpr auto& Log = ComponentLog::Of<"SendYourSignatureMessage">;
} // namespace

SendYourSignatureMessage::SendYourSignatureMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version)
{
}

SendYourSignatureMessage::SendYourSignatureMessage(const Nfx::System::Version& version, const MACAddress& target)
    : DiscoveryMessage(version)
    , TargetedMACAddress(target)
{
}

SendYourSignatureMessage::SendYourSignatureMessage(const MACAddress& target)
    : DiscoveryMessage(ProtocolVersion(), false)
    , TargetedMACAddress(target)
{
}

void SendYourSignatureMessage::Serialize(JSONStringer& stringer) const
{
    DiscoveryMessage::Serialize(stringer);
    stringer.Key(TargetedMACAddressKey);
    stringer.Value(TargetedMACAddress.ToString());
}

DiscoveryMessageType SendYourSignatureMessage::GetMessageType() const
{
    return DiscoveryMessageType::SendYourSignature;
}

void SendYourSignatureMessage::ReadFrom(const JSONObject& json)
{
    DiscoveryMessage::ReadFrom(json);
    String target;
    if (!json.TryGetString(TargetedMACAddressKey, target))
    {
        Log().Reject("No targeted MAC address !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    TargetedMACAddress = MACAddress::Parse(target);
}
} // namespace Zent::Discovery
