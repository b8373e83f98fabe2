#include "NICsConfigsListJsonSerializer.h"

#include "Json/JSONArray.h"
#include "Json/JSONObject.h"

namespace Zent::Discovery::Server
{
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Zent::Utils::Json::JSONArray;

SmartPointer<SendChangeYourIPConfigAction::NICConfigList> NICsConfigsListJsonSerializer::Deserialize(
    const String& text) const
{
    const JSONArray array(text);
    SmartPointer<SendChangeYourIPConfigAction::NICConfigList> configs(
        new SendChangeYourIPConfigAction::NICConfigList());
    for (std::int32_t index = 0; index < array.Length(); ++index)
    {
        const SmartPointer<NICConfig> config(new NICConfig());
        config->ReadFrom(array.GetJSONObject(index));
        configs->Add(config);
    }
    return configs;
}
} // namespace Zent::Discovery::Server
