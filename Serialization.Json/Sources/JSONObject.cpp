#include "Json/JSONObject.h"

#include "JSONMembers.h"
#include "JSONWriter.h"
#include "Json/JSONArray.h"
#include "system/Exceptions.h"

#include <cJSON.h>

#include <string>
#include <utility>

namespace Zent::Utils::Json
{
using Nfx::System::Boolean;
using Nfx::System::Exception;
using Nfx::System::String;
using Nfx::System::Collections::Generic::List;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/JSONObject";

[[noreturn]] void ThrowNotFound(const char* type, std::string_view key, std::int32_t line)
{
    String message(type);
    message.Append(key).Append(" not found");
    throw Exception(ErrorCodes::ResourceNotFound, message, SourceName, line);
}
} // namespace

JSONObject::JSONObject() = default;

JSONObject::JSONObject(const String& text)
    : AbstractJSON(text)
{
    if (cJSON_IsObject(Item()) == 0)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no JSON object : " + text.Quoted(), SourceName, __LINE__);
    }
}

JSONObject::JSONObject(const AbstractJSON& owner, const cJSON* item)
    : AbstractJSON(owner, item)
{
}

Boolean JSONObject::TryGetBoolean(const TextView& key, Boolean& value) const
{
    const cJSON* const member = JSONMembers::Find(Item(), key);
    if (cJSON_IsBool(member) == 0)
    {
        return false;
    }
    value = cJSON_IsTrue(member) != 0;
    return true;
}

Boolean JSONObject::TryGetString(const TextView& key, String& value) const
{
    std::string_view text;
    if (!TryGetText(key, text))
    {
        return false;
    }
    value = String(text);
    return true;
}

bool JSONObject::TryGetText(const TextView& key, std::string_view& value) const noexcept
{
    const cJSON* const member = JSONMembers::Find(Item(), key);
    if (cJSON_IsString(member) == 0)
    {
        return false;
    }
    value = member->valuestring;
    return true;
}

Boolean JSONObject::TryGetJSONObject(const TextView& key, JSONObject& value) const
{
    const cJSON* const member = JSONMembers::Find(Item(), key);
    if (cJSON_IsObject(member) == 0)
    {
        return false;
    }
    value = JSONObject(*this, member);
    return true;
}

Boolean JSONObject::TryGetJSONArray(const TextView& key, JSONArray& value) const
{
    const cJSON* const member = JSONMembers::Find(Item(), key);
    if (cJSON_IsArray(member) == 0)
    {
        return false;
    }
    value = JSONArray(*this, member);
    return true;
}

bool JSONObject::HasString(const TextView& key) const noexcept
{
    return cJSON_IsString(JSONMembers::Find(Item(), key)) != 0;
}

String JSONObject::GetString(const TextView& key) const
{
    return String(GetText(key));
}

std::string_view JSONObject::GetText(const TextView& key) const
{
    std::string_view value;
    if (!TryGetText(key, value))
    {
        ThrowNotFound("String ", key, __LINE__);
    }
    return value;
}

JSONObject JSONObject::GetJSONObject(const TextView& key) const
{
    JSONObject value;
    if (!TryGetJSONObject(key, value))
    {
        ThrowNotFound("Object ", key, __LINE__);
    }
    return value;
}

JSONArray JSONObject::GetJSONArray(const TextView& key) const
{
    JSONArray value;
    if (!TryGetJSONArray(key, value))
    {
        ThrowNotFound("Array ", key, __LINE__);
    }
    return value;
}

List<String> JSONObject::Keys() const
{
    List<String> keys;
    for (const cJSON* member = Item() == nullptr ? nullptr : Item()->child; member != nullptr; member = member->next)
    {
        keys.Add(member->string);
    }
    return keys;
}

void JSONObject::ForEachString(const StringAction& action) const
{
    const JSONMembers members(Item());
    for (const JSONMembers::Member& member : members.Different())
    {
        if (cJSON_IsString(member.Match) == 0)
        {
            ThrowNotFound("String ", member.Key, __LINE__);
        }
        action(member.Key, member.Match->valuestring, member.Match != member.Item);
    }
}

String JSONObject::ToString() const
{
    if (Item() == nullptr)
    {
        return "{}";
    }
    std::string text;
    JSONWriter::AppendContainer(text, *Item());
    return String(std::move(text));
}
} // namespace Zent::Utils::Json
