#include "JsonText.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace Zent::Discovery::Inventory
{
JsonText& JsonText::Text(std::string_view key, std::string_view value)
{
    return Raw(key, Quoted(value));
}

JsonText& JsonText::Number(std::string_view key, std::int64_t value)
{
    return Raw(key, std::to_string(value));
}

JsonText& JsonText::Flag(std::string_view key, bool value)
{
    return Raw(key, value ? "true" : "false");
}

JsonText& JsonText::Raw(std::string_view key, std::string_view json)
{
    text += text.empty() ? "{" : ",";
    text += Quoted(key);
    text += ':';
    text += json;
    return *this;
}

std::string JsonText::Take()
{
    text += text.empty() ? "{}" : "}";
    return std::exchange(text, {});
}

std::string JsonText::OneDecimal(double value)
{
    const auto tenths = std::llround(value * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string JsonText::Quoted(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : text)
    {
        if (static_cast<unsigned char>(character) < 0x20)
        {
            char escape[8];
            std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(character));
            quoted += escape;
            continue;
        }
        if (character == '"' || character == '\\')
        {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}
} // namespace Zent::Discovery::Inventory
