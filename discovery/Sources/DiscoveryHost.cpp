#include "Discovery/DiscoveryHost.h"

#include "Discovery/Attempt.h"
#include "Discovery/ComponentLog.h"
#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

#include <utility>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Collections::Generic::List;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
constexpr JSONKey HostNameKey("HostName");
constexpr JSONKey IsHostNameReadOnlyKey("IsHostNameReadOnly");
constexpr JSONKey RebootRequiredForIPConfigChangeKey("RebootRequiredForIPConfigChange");
constexpr JSONKey RebootRequiredForHostNameChangeKey("RebootRequiredForHostNameChange");
constexpr JSONKey DeviceTypeKey("DeviceType");
constexpr JSONKey DeviceFamilyKey("DeviceFamily");
constexpr JSONKey SerialNumberKey("SerialNumber");
constexpr JSONKey NICsKey("NICs");
constexpr JSONKey ProductsKey("Products");
constexpr JSONKey FileTransferInfosKey("FileTransferInfos");

constexpr auto& Log = ComponentLog::Of<"DiscoveryMessage">;

template <class T>
void ReadList(const JSONArray& array, List<SmartPointer<T>>& list)
{
    list.Clear();
    list.Reserve(static_cast<std::size_t>(std::int32_t{array.Length()}));
    for (std::int32_t index = 0; index < array.Length(); ++index)
    {
        SmartPointer<T> record = SmartPointer<T>::Create();
        record->ReadFrom(array.GetJSONObject(index));
        list.Add(std::move(record));
    }
}

template <class T>
void WriteList(JSONStringer& stringer, const JSONKey& key, const List<SmartPointer<T>>& list)
{
    stringer.Key(key);
    stringer.Array();
    for (const SmartPointer<T>& record : list)
    {
        record->Serialize(stringer);
    }
    stringer.EndArray();
}
} // namespace

void DiscoveryHost::Serialize(JSONStringer& stringer) const
{
    stringer.Object();
    stringer.Key(HostNameKey);
    stringer.Value(HostName);
    stringer.Key(IsHostNameReadOnlyKey);
    stringer.Value(IsHostNameReadOnly);
    stringer.Key(RebootRequiredForIPConfigChangeKey);
    stringer.Value(RebootRequiredForIPConfigChange);
    stringer.Key(RebootRequiredForHostNameChangeKey);
    stringer.Value(RebootRequiredForHostNameChange);
    stringer.Key(DeviceTypeKey);
    stringer.Value(DeviceType);
    stringer.Key(DeviceFamilyKey);
    stringer.Value(DeviceFamily);
    stringer.Key(SerialNumberKey);
    stringer.Value(SerialNumber);
    WriteList(stringer, NICsKey, NICs);
    WriteList(stringer, ProductsKey, Products);
    stringer.Key(FileTransferInfosKey);
    stringer.Json(FileTransferInfosText());
    stringer.EndObject();
}

String DiscoveryHost::ToJson() const
{
    return IJSONSerializable::ToJson();
}

void DiscoveryHost::Deserialize(const String& json)
{
    ReadFrom(JSONObject(json));
}

void DiscoveryHost::ReadFrom(const JSONObject& json)
{
    HostName = json.GetString(HostNameKey);
    IsHostNameReadOnly = true;
    json.TryGetBoolean(IsHostNameReadOnlyKey, IsHostNameReadOnly);
    RebootRequiredForIPConfigChange = false;
    json.TryGetBoolean(RebootRequiredForIPConfigChangeKey, RebootRequiredForIPConfigChange);
    RebootRequiredForHostNameChange = false;
    json.TryGetBoolean(RebootRequiredForHostNameChangeKey, RebootRequiredForHostNameChange);
    DeviceType = json.GetString(DeviceTypeKey);
    DeviceFamily.Clear();
    json.TryGetString(DeviceFamilyKey, DeviceFamily);
    SerialNumber.Clear();
    json.TryGetString(SerialNumberKey, SerialNumber);
    ReadList(json.GetJSONArray(NICsKey), NICs);
    ReadList(json.GetJSONArray(ProductsKey), Products);
    ReadFileTransferInfos(json);
}

void DiscoveryHost::ReadFileTransferInfos(const JSONObject& json)
{
    FileTransferInfos = SmartPointer<Zent::Discovery::FileTransferInfos>::Create();
    if (!Attempt([&] { FileTransferInfos->ReadFrom(json.GetJSONObject(FileTransferInfosKey)); }))
    {
        Log().Write("No FileTransfer infos or failed to parse JSON data", LogStreamLevel::Standard);
    }
}

String DiscoveryHost::FileTransferInfosText() const
{
    String text("{}");
    if (!FileTransferInfos.IsNull())
    {
        Attempt([&] { text = FileTransferInfos->ToJson(); },
                [](const Nfx::System::Exception& exception) {
                    Log().Write("Exception caught during JSON FileTransfer infos parsing -> ignoring.", exception);
                });
    }
    return text;
}
} // namespace Zent::Discovery
