#include "JSONEscapes.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace Zent::Utils::Json
{
namespace
{
constexpr std::size_t UnicodeEscapeLength = 6;

/// The code unit of a \uXXXX escape at the start of the text; -1 when there is none.
std::int32_t CodeUnit(std::string_view text)
{
    if (text.size() < UnicodeEscapeLength || text[0] != '\\' || text[1] != 'u')
    {
        return -1;
    }
    const char* const last = text.data() + UnicodeEscapeLength;
    std::uint16_t unit = 0;
    const std::from_chars_result end = std::from_chars(text.data() + 2, last, unit, 16);
    return end.ec == std::errc() && end.ptr == last ? unit : -1;
}

bool IsHighSurrogate(std::int32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::int32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Copies the \u escape at the start of the text, or leaves it out. Returns how much of the text it takes.
std::size_t RewriteUnicodeEscape(std::string_view text, std::string& result)
{
    const std::int32_t unit = CodeUnit(text);
    if (unit < 0)
    {
        // cJSON would read it as U+0000. The text ends here instead, within a string, and so is malformed as a whole.
        return text.size();
    }
    if (IsHighSurrogate(unit) && IsLowSurrogate(CodeUnit(text.substr(UnicodeEscapeLength))))
    {
        result.append(text.substr(0, 2 * UnicodeEscapeLength));
        return 2 * UnicodeEscapeLength;
    }
    if (unit != 0 && !IsHighSurrogate(unit) && !IsLowSurrogate(unit))
    {
        result.append(text.substr(0, UnicodeEscapeLength));
    }
    return UnicodeEscapeLength;
}

/// Copies the escape at the start of the text in the form that cJSON takes. Returns how much of the text it takes.
std::size_t RewriteEscape(std::string_view text, std::string& result)
{
    if (text.size() < 2)
    {
        return text.size(); // the string has no end either way
    }
    if (text[1] == 'u')
    {
        return RewriteUnicodeEscape(text, result);
    }
    constexpr std::string_view known = "\"\\/bfnrt";
    result.append(known.find(text[1]) == std::string_view::npos ? text.substr(1, 1) : text.substr(0, 2));
    return 2;
}
} // namespace

std::string RewriteEscapes(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    bool inString = false;
    while (!text.empty())
    {
        const std::size_t run = text.find_first_of(inString ? "\"\\" : "\"");
        result.append(text.substr(0, run));
        text.remove_prefix(run == std::string_view::npos ? text.size() : run);
        if (text.starts_with('"'))
        {
            inString = !inString;
            result.push_back('"');
            text.remove_prefix(1);
        }
        else if (!text.empty())
        {
            text.remove_prefix(RewriteEscape(text, result));
        }
    }
    return result;
}
} // namespace Zent::Utils::Json
