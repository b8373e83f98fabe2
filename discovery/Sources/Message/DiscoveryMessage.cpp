#include "Discovery/Message/DiscoveryMessage.h"

#include "Discovery/ComponentLog.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"
#include "system/Immortal.h"

using Nfx::System::Boolean;
using Nfx::System::Immortal;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/DiscoveryMessage";
constexpr JSONKey TypeKey("DiscoveryMessageType");
constexpr JSONKey VersionKey("DiscoveryVersion");
constexpr JSONKey BroadcastKey("Broadcast");

constexpr auto& Log = ComponentLog::Of<"DiscoveryMessage">;

void RequireTypeName(const JSONObject& json)
{
    if (!json.HasString(TypeKey))
    {
        Log().Reject("No message type key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
}

Boolean ReadBroadcast(const JSONObject& json)
{
    String text;
    if (!json.TryGetString(BroadcastKey, text))
    {
        Log().Write("No Broadcast key. Assuming broadcast message.", LogStreamLevel::Debug);
        return true;
    }
    Boolean broadcast;
    if (!Boolean::TryParse(text, broadcast))
    {
        Log().Reject("No valid value for Broadcast key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    return broadcast;
}
} // namespace

DiscoveryMessage::DiscoveryMessage()
    : DiscoveryMessage(ProtocolVersion())
{
}

DiscoveryMessage::DiscoveryMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version, true)
{
}

DiscoveryMessage::DiscoveryMessage(const Nfx::System::Version& version, const Boolean& broadcast)
    : Version(version)
    , Broadcast(broadcast)
{
}

const Nfx::System::Version& DiscoveryMessage::ProtocolVersion()
{
    static const Immortal<Nfx::System::Version> version(Nfx::System::Version::Parse(ProtocolVersionText));
    return version.Get();
}

void DiscoveryMessage::Serialize(JSONStringer& stringer) const
{
    stringer.Key(TypeKey);
    stringer.Value(GetMessageType().ToString());
    stringer.Key(VersionKey);
    stringer.Value(Version.ToString());
    stringer.Key(BroadcastKey);
    stringer.Value(Broadcast.ToString());
}

String DiscoveryMessage::ToJson() const
{
    JSONStringer stringer;
    stringer.Object();
    Serialize(stringer);
    stringer.EndObject();
    return stringer.Detach();
}

void DiscoveryMessage::Deserialize(const String& json)
{
    ReadFrom(JSONObject(json));
}

void DiscoveryMessage::ReadFrom(const JSONObject& json)
{
    RequireTypeName(json);
    String version;
    if (!json.TryGetString(VersionKey, version))
    {
        Log().Reject("No version key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    Version = Nfx::System::Version::Parse(version);
    Broadcast = ReadBroadcast(json);
}

DiscoveryMessageType DiscoveryMessage::GetMessageType(const String& json)
{
    return GetMessageType(JSONObject(json));
}

DiscoveryMessageType DiscoveryMessage::GetMessageType(const JSONObject& json)
{
    RequireTypeName(json);
    return DiscoveryMessageType::Parse(json.GetString(TypeKey));
}
} // namespace Zent::Discovery
