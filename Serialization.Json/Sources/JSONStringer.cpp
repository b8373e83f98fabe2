#include "Json/JSONStringer.h"

#include "JSONWriter.h"
#include "system/Exceptions.h"

#include <utility>

namespace Zent::Utils::Json
{
using Nfx::System::Boolean;
using Nfx::System::Exception;
using Nfx::System::String;
namespace ErrorCodes = Nfx::System::ErrorCodes;

namespace
{
const char SourceName[] = "Serialization.Json/Sources/JSONStringer";

constexpr std::size_t TypicalLength = 1024; // of a device's description
constexpr std::size_t TypicalDepth = 8;

[[noreturn]] void ThrowMisuse(const String& message, std::int32_t line)
{
    throw Exception(ErrorCodes::InvalidCommandValue, message, SourceName, line);
}
} // namespace

JSONStringer::JSONStringer() = default;

void JSONStringer::Object()
{
    Open(Kind::Object, '{');
}

void JSONStringer::EndObject()
{
    Close(Kind::Object, '}');
}

void JSONStringer::Array()
{
    Open(Kind::Array, '[');
}

void JSONStringer::EndArray()
{
    Close(Kind::Array, ']');
}

void JSONStringer::Key(const TextView& key)
{
    BeginKey(key);
    JSONWriter::AppendString(text, key);
    text.push_back(':');
}

void JSONStringer::Key(const JSONKey& key)
{
    BeginKey(key.Text());
    text.push_back('"');
    text.append(key.Text()).append("\":");
}

void JSONStringer::Value(const TextView& value)
{
    BeginValue();
    JSONWriter::AppendString(text, value);
}

void JSONStringer::Json(const TextView& json)
{
    BeginValue();
    text.append(json);
}

void JSONStringer::Value(const Boolean& value)
{
    Json(value ? "true" : "false");
}

String JSONStringer::ToString() const
{
    return String(std::string_view(text).substr(0, keyStart));
}

String JSONStringer::Detach()
{
    DropPendingKey();
    open.clear();
    complete = false;
    return String(std::exchange(text, std::string()));
}

void JSONStringer::BeginKey(std::string_view key)
{
    if (open.empty() || open.back().What != Kind::Object)
    {
        String message("Key ");
        message.Append(key).Append(" outside of an object");
        ThrowMisuse(message, __LINE__);
    }
    DropPendingKey();
    keyWasFirst = !open.back().HasMembers;
    keyStart = text.size();
    Separate();
}

void JSONStringer::BeginValue()
{
    if (open.empty())
    {
        ThrowMisuse("Value outside of an object or array", __LINE__);
    }
    if (open.back().What == Kind::Array)
    {
        Separate();
    }
    else if (keyStart == NoKey)
    {
        ThrowMisuse("Value without a key", __LINE__);
    }
    keyStart = NoKey;
}

void JSONStringer::Open(Kind kind, char bracket)
{
    if (complete)
    {
        ThrowMisuse("Second document in one text", __LINE__);
    }
    if (!open.empty())
    {
        BeginValue();
    }
    else
    {
        text.reserve(TypicalLength);
        open.reserve(TypicalDepth);
    }
    text.push_back(bracket);
    open.push_back({kind, false});
}

void JSONStringer::Close(Kind kind, char bracket)
{
    if (open.empty() || open.back().What != kind)
    {
        ThrowMisuse(kind == Kind::Object ? "End of an object that is not open" : "End of an array that is not open",
                    __LINE__);
    }
    DropPendingKey();
    text.push_back(bracket);
    open.pop_back();
    complete = open.empty();
}

void JSONStringer::DropPendingKey()
{
    if (keyStart != NoKey)
    {
        text.resize(keyStart);
        open.back().HasMembers = !keyWasFirst;
        keyStart = NoKey;
    }
}

void JSONStringer::Separate()
{
    if (open.back().HasMembers)
    {
        text.push_back(',');
    }
    open.back().HasMembers = true;
}
} // namespace Zent::Utils::Json
