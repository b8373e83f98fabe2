#include "Discovery/Message/ChangeYourIPConfigMessage.h"

#include "Discovery/Attempt.h"
#include "Discovery/ComponentLog.h"
#include "Json/JSONArray.h"
#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"
#include "system/Int32.h"

#include <utility>

using Nfx::System::Int32;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Utils::Json::JSONArray;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/ChangeYourIPConfigMessage";
constexpr JSONKey NewNICConfigsKey("NewNICConfigs");
constexpr std::int32_t MaximumDefectLines = 64; // of one message, so that 64 KiB do not write megabytes

constexpr auto& Log = ComponentLog::Of<"ChangeYourIPConfigMessage">;

/// Empty when the element is no good settings.
SmartPointer<NICConfig> ReadNICConfig(const JSONArray& array, std::int32_t index)
{
    JSONObject element;
    // One datagram holds twenty thousand elements of two characters; an exception for each would take too long.
    if (!array.TryGetJSONObject(index, element) || !NICConfig::IsComplete(element))
    {
        return nullptr;
    }
    SmartPointer<NICConfig> config = SmartPointer<NICConfig>::Create();
    return Attempt([&] { config->ReadFrom(element); }) ? config : nullptr;
}

/// Writes the line of a bad element, given how many there are with it.
void LogDefect(std::int32_t defects)
{
    if (defects <= MaximumDefectLines)
    {
        Log().Write("Failed to parse NIC config !!! Ignoring this one...", LogStreamLevel::Critical);
    }
}

/// Writes one line for all bad elements that have none.
void LogUnnamedDefects(std::int32_t defects)
{
    if (defects > MaximumDefectLines)
    {
        const String count = Int32(defects - MaximumDefectLines).ToString();
        Log().Write("Failed to parse NIC config !!! Ignoring " + count + " more...", LogStreamLevel::Critical);
    }
}
} // namespace

ChangeYourIPConfigMessage::ChangeYourIPConfigMessage(const Nfx::System::Version& version)
    : DiscoveryMessage(version)
{
}

ChangeYourIPConfigMessage::ChangeYourIPConfigMessage(const NICConfigList& newNICConfigs)
    : NewNICConfigs(newNICConfigs)
{
}

ChangeYourIPConfigMessage::ChangeYourIPConfigMessage(const Nfx::System::Version& version,
                                                     const NICConfigList& newNICConfigs)
    : DiscoveryMessage(version)
    , NewNICConfigs(newNICConfigs)
{
}

void ChangeYourIPConfigMessage::Serialize(JSONStringer& stringer) const
{
    DiscoveryMessage::Serialize(stringer);
    stringer.Key(NewNICConfigsKey);
    stringer.Array();
    for (const SmartPointer<NICConfig>& config : NewNICConfigs)
    {
        config->Serialize(stringer);
    }
    stringer.EndArray();
}

DiscoveryMessageType ChangeYourIPConfigMessage::GetMessageType() const
{
    return DiscoveryMessageType::ChangeYourIPConfig;
}

void ChangeYourIPConfigMessage::ReadFrom(const JSONObject& json)
{
    DiscoveryMessage::ReadFrom(json);
    JSONArray array;
    if (!json.TryGetJSONArray(NewNICConfigsKey, array))
    {
        Log().Reject("No \"New NIC Configs\" key !!! => BAD MESSAGE FORMAT !", SourceName, __LINE__);
    }
    NewNICConfigs.Clear();
    std::int32_t defects = 0;
    for (std::int32_t index = 0; index < array.Length(); ++index)
    {
        SmartPointer<NICConfig> config = ReadNICConfig(array, index);
        if (config.IsNull())
        {
            LogDefect(++defects);
            continue;
        }
        NewNICConfigs.Add(std::move(config));
    }
    LogUnnamedDefects(defects);
}
} // namespace Zent::Discovery
