#include "Discovery/Message/ChangeYourHostNameMessage.h"

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
const char SourceName[] = "Sources/Message/ChangeYourHostNameMessage";
constexpr JSONKey NewHostNameKey("NewHostName");
constexpr JSONKey TargetedMACAddressKey("TargetedMACAddress");

const LogStreamChannel& Channel()
{
    static const Immortal<LogStreamChannel> channel("ChangeYourHostNameMessage");
    return channel.Get();
}
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
        DefectLog::Reject(Channel(), "No \"New HostName\" key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    String target;
    if (!json.TryGetString(TargetedMACAddressKey, target))
    {
        DefectLog::Reject(Channel(), "No \"Targeted MACAddress\" key !!! => BAD MESSAGE FORMAT !", SourceName,
                          __LINE__);
    }
    TargetedMACAddress = MACAddress::Parse(target);
}
} // namespace Zent::Discovery
