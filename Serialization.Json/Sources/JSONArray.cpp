#include "Json/JSONArray.h"

#include "JSONWriter.h"
#include "Json/JSONObject.h"
#include "system/Exceptions.h"

#include <cJSON.h>

#include <utility>

namespace Zent::Utils::Json
{
using Nfx::System::Boolean;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::String;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/JSONArray";

[[noreturn]] void ThrowNotFound(const char* type, const Int32& index, std::int32_t line)
{
    throw Exception(ErrorCodes::ResourceNotFound, type + index.ToString() + " not found", SourceName, line);
}
} // namespace

JSONArray::JSONArray() = default;

JSONArray::JSONArray(const String& text)
    : AbstractJSON(text)
{
    if (cJSON_IsArray(Item()) == 0)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no JSON array : " + text.Quoted(), SourceName, __LINE__);
    }
}

JSONArray::JSONArray(const AbstractJSON& owner, const cJSON* item)
    : AbstractJSON(owner, item)
{
}

Int32 JSONArray::Length() const
{
    if (length < 0)
    {
        length = cJSON_GetArraySize(Item());
    }
    return length;
}

Boolean JSONArray::TryGetJSONObject(const Int32& index, JSONObject& value) const
{
    const cJSON* const element = Element(index);
    if (cJSON_IsObject(element) == 0)
    {
        return false;
    }
    value = JSONObject(*this, element);
    return true;
}

Boolean JSONArray::TryGetString(const Int32& index, String& value) const
{
    const cJSON* const element = Element(index);
    if (cJSON_IsString(element) == 0)
    {
        return false;
    }
    value = String(element->valuestring);
    return true;
}

JSONObject JSONArray::GetJSONObject(const Int32& index) const
{
    JSONObject value;
    if (!TryGetJSONObject(index, value))
    {
        ThrowNotFound("Object ", index, __LINE__);
    }
    return value;
}

String JSONArray::GetString(const Int32& index) const
{
    String value;
    if (!TryGetString(index, value))
    {
        ThrowNotFound("String ", index, __LINE__);
    }
    return value;
}

String JSONArray::ToString() const
{
    if (Item() == nullptr)
    {
        return "[]";
    }
    std::string text;
    JSONWriter::AppendContainer(text, *Item());
    return String(std::move(text));
}

const cJSON* JSONArray::Element(std::int32_t index) const noexcept
{
    if (index < 0 || Item() == nullptr)
    {
        return nullptr;
    }
    if (lastElement == nullptr || index < lastIndex)
    {
        lastIndex = 0;
        lastElement = Item()->child;
    }
    while (lastElement != nullptr && lastIndex < index)
    {
        lastElement = lastElement->next;
        ++lastIndex;
    }
    return lastElement;
}
} // namespace Zent::Utils::Json
