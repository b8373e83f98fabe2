#pragma once

#include "Json/JSONObject.h"
#include "system/String.h"

#include <string>

namespace Zent::Discovery::Inventory
{
/// Empty when the member is missing or no text: what has a hole tells more than nothing.
inline std::string MemberText(const Zent::Utils::Json::JSONObject& object, const char* key)
{
    Nfx::System::String text;
    object.TryGetString(key, text);
    return std::string(text.View());
}
} // namespace Zent::Discovery::Inventory
