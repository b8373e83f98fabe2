#include "Discovery/Message/SignatureBroadcastMessage.h"

#include "DefectLog.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"
#include "system/Exceptions.h"
#include "system/Immortal.h"

#include <utility>

using Nfx::System::Immortal;
using Nfx::System::SmartPointer;
using Nfx::System::LogStreams::LogStreamChannel;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/SignatureBroadcastMessage";
constexpr JSONKey HostKey("Host");
constexpr JSONKey SourceNICKey("SourceNIC");

const LogStreamChannel& Channel()
{
    static const Immortal<LogStreamChannel> channel("SignatureBroadcastMessage");
    return channel.Get();
}
} // namespace

SignatureBroadcastMessage::SignatureBroadcastMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version)
{
}

SignatureBroadcastMessage::SignatureBroadcastMessage(const SmartPointer<DiscoveryHost>& host,
                                                     const SmartPointer<NICConfig>& sourceNIC)
    : Host(host)
    , SourceNIC(sourceNIC)
{
}

void SignatureBroadcastMessage::Serialize(JSONStringer& stringer) const
{
    DiscoveryMessage::Serialize(stringer);
    stringer.Key(HostKey);
    Host->Serialize(stringer);
    if (!SourceNIC.IsNull())
    {
        stringer.Key(SourceNICKey);
        SourceNIC->Serialize(stringer);
    }
}

DiscoveryMessageType SignatureBroadcastMessage::GetMessageType() const
{
    return DiscoveryMessageType::SignatureBroadcast;
}

void SignatureBroadcastMessage::ReadFrom(const JSONObject& json)
{
    DiscoveryMessage::ReadFrom(json);
    JSONObject hostJson;
    if (!json.TryGetJSONObject(HostKey, hostJson))
    {
        DefectLog::Reject(Channel(), "No Host key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    SmartPointer<DiscoveryHost> host = SmartPointer<DiscoveryHost>::Create();
    try
    {
        host->ReadFrom(hostJson);
    }
    catch (const Nfx::System::Exception&)
    {
        DefectLog::Reject(Channel(), "Failed to parse Host !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    Host = std::move(host);
    ReadSourceNIC(json);
}

void SignatureBroadcastMessage::ReadSourceNIC(const JSONObject& json)
{
    SourceNIC = nullptr;
    JSONObject sourceJson;
    if (!json.TryGetJSONObject(SourceNICKey, sourceJson))
    {
        DefectLog::Write(Channel(), "No Source NIC key. Ignoring.", LogStreamLevel::Standard);
        return;
    }
    SmartPointer<NICConfig> source = SmartPointer<NICConfig>::Create();
    try
    {
        source->ReadFrom(sourceJson);
        SourceNIC = std::move(source);
    }
    catch (const Nfx::System::Exception&)
    {
        DefectLog::Write(Channel(), "Failed to parse source NIC -> Ignoring.", LogStreamLevel::Critical);
    }
}
} // namespace Zent::Discovery
