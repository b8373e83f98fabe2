#include "Discovery/Message/ChangeYourHostNameMessage.h"

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
const char SourceName[] = "Sources/Message/ChangeYourHostNameMessage";
constexpr JSONKey NewHostNameKey("NewHostName");
constexpr JSONKey TargetedMACAddressKey("TargetedMACAddress");

constexpr auto& Log = ComponentLog::Of<"ChangeYourHostNameMessage">;
} // namespace

ChangeYourHostNameMessage::ChangeYourHostNameMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version)
{
}

ChangeYourHostNameMessage::ChangeYourHostNameMessage(const Nfx::System::Version& version, const String& newHostName)
    : DiscoveryMessage(version)
    , NewHostName(newHostName)
{
}

ChangeYourHostNameMessage::ChangeYourHostNameMessage(const Nfx::System::Version& version,
                                                     const MACAddress& target,
                                                     const String& newHostName)
    : DiscoveryMessage(version)
    , NewHostName(newHostName)
    , TargetedMACAddress(target)
{
}

ChangeYourHostNameMessage::ChangeYourHostNameMessage(const MACAddress& target, const String& newHostName)
    : DiscoveryMessage(ProtocolVersion(), false)
    , NewHostName(newHostName)
    , TargetedMACAddress(target)
{
}

void ChangeYourHostNameMessage::Serialize(JSONStringer& stringer) const
{
    DiscoveryMessage::Serialize(stringer);
    stringer.Key(NewHostNameKey);
    stringer.Value(NewHostName);
    stringer.Key(TargetedMACAddressKey);
    stringer.Value(TargetedMACAddress.ToString());
}

DiscoveryMessageType ChangeYourHostNameMessage::GetMessageType() const
{
    return DiscoveryMessageType::ChangeYourHostName;
}

void ChangeYourHostNameMessage::ReadFrom(const JSONObject& json)
{
    DiscoveryMessage::ReadFrom(json);
    if (!json.TryGetString(NewHostNameKey, NewHostName))
    {
        Log().Reject("No \"New HostName\" key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    String target;
    if (!json.TryGetString(TargetedMACAddressKey, target))
    {
        Log().Reject("No \"Targeted MACAddress\" key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    TargetedMACAddress = MACAddress::Parse(target);
}
} // namespace Zent::Discovery
