#include "Discovery/Message/SignatureBroadcastMessage.h"

#include "Discovery/Attempt.h"
#include "Discovery/ComponentLog.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

#include <utility>

using Nfx::System::SmartPointer;
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

constexpr auto& Log = ComponentLog::Of<"SignatureBroadcastMessage">;
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
        Log().Reject("No Host key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    SmartPointer<DiscoveryHost> host = SmartPointer<DiscoveryHost>::Create();
    if (!Attempt([&] { host->ReadFrom(hostJson); }))
    {
        Log().Reject("Failed to parse Host !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
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
        Log().Write("No Source NIC key. Ignoring.", LogStreamLevel::Standard);
        return;
    }
    SmartPointer<NICConfig> source = SmartPointer<NICConfig>::Create();
    if (!Attempt([&] { source->ReadFrom(sourceJson); }))
    {
        Log().Write("Failed to parse source NIC -> Ignoring.", LogStreamLevel::Critical);
        return;
    }
    SourceNIC = std::move(source);
}
} // namespace Zent::Discovery
