#include "DiscoveryHostSerializer.h"

#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

namespace Zent::Discovery::Server
{
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace
{
constexpr JSONKey HostKey("Host");
constexpr JSONKey SourceNICKey("SourceNIC");
} // namespace

String DiscoveryHostSerializer::Serialize(const DiscoveryHost& host) const
{
    return Serialize(host, nullptr);
}

String DiscoveryHostSerializer::Serialize(const DiscoveryHost& host, const SmartPointer<NICConfig>& sourceNIC) const
{
    JSONStringer stringer;
    stringer.Object();
    stringer.Key(HostKey);
    host.Serialize(stringer);
    if (!sourceNIC.IsNull())
    {
        stringer.Key(SourceNICKey);
        sourceNIC->Serialize(stringer);
    }
    stringer.EndObject();
    return stringer.Detach();
}

SmartPointer<DiscoveryHost> DiscoveryHostSerializer::Deserialize(const String& json) const
{
    SmartPointer<DiscoveryHost> host(new DiscoveryHost());
    host->ReadFrom(JSONObject(json).GetJSONObject(HostKey));
    return host;
}
} // namespace Zent::Discovery::Server
