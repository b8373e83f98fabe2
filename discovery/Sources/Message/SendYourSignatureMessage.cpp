#include "Discovery/Message/SendYourSignatureMessage.h"

#include "DefectLog.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"
#include "system/Immortal.h"

using Nfx::System::Immortal;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamChannel;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/SendYourSignatureMessage";
constexpr JSONKey TargetedMACAddressKey("TargetedMACAddress");

const LogStreamChannel& Channel()
{
    static const Immortal<LogStreamChannel> channel("SendYourSignatureMessage");
    return channel.Get();
}
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
        DefectLog::Reject(Channel(), "No targeted MAC address !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    TargetedMACAddress = MACAddress::Parse(target);
}
} // namespace Zent::Discovery
