#include "JSONWriter.h"

#include <cJSON.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Zent::Utils::Json
{
namespace
{
/// The containers around a position, outermost first: kept beside the tree, so that its depth costs no stack.
using Containers = std::vector<const cJSON*>;

/// Whether a character needs an escape: a table, because most of the work of writing is to look for one.
constexpr auto NeedsEscape = [] {
    std::array<bool, 256> needsEscape{};
    std::fill_n(needsEscape.begin(), 32, true);
    needsEscape['"'] = true;
    needsEscape['\\'] = true;
    return needsEscape;
}();

const char* FindEscape(const char* begin, const char* end)
{
    return std::find_if(begin, end, [](char character) { return NeedsEscape[static_cast<unsigned char>(character)]; });
}

void AppendEscape(std::string& text, char character)
{
    constexpr std::string_view escaped = "\"\\\b\t\n\f\r";
    constexpr std::string_view letters = "\"\\btnfr";
    text.push_back('\\');
    const std::size_t known = escaped.find(character);
    if (known != std::string_view::npos)
    {
        text.push_back(letters[known]);
        return;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(character);
    text.append("u00").append({digits[byte >> 4], digits[byte & 15]});
}

bool IsWithinEpsilon(double left, double right)
{
    return std::fabs(left - right) <= std::numeric_limits<double>::epsilon();
}

bool IsInt32(double value)
{
    const double integer = std::trunc(value);
    return integer >= std::numeric_limits<std::int32_t>::min() && integer <= std::numeric_limits<std::int32_t>::max() &&
           IsWithinEpsilon(integer, value);
}

template <class... TFormat>
void AppendDigits(std::string& text, TFormat... format)
{
    char digits[std::numeric_limits<double>::max_exponent10 + 20]; // sign, integer part, point, six decimals
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, format...);
    text.append(digits, end.ptr);
}

void AppendScalar(std::string& text, const cJSON& item)
{
    switch (item.type & 0xFF)
    {
    case cJSON_False:
        text.append("false");
        break;
    case cJSON_True:
        text.append("true");
        break;
    case cJSON_Number:
        JSONWriter::AppendNumber(text, item.valuedouble);
        break;
    case cJSON_String:
        JSONWriter::AppendString(text, item.valuestring);
        break;
    default:
        text.append("null");
        break;
    }
}

bool IsContainer(const cJSON& item)
{
    return cJSON_IsObject(&item) != 0 || cJSON_IsArray(&item) != 0;
}

void AppendPrefix(std::string& text, const cJSON& container, const cJSON& item)
{
    if (container.child != &item)
    {
        text.push_back(',');
    }
    if (cJSON_IsObject(&container) != 0)
    {
        JSONWriter::AppendString(text, item.string);
        text.push_back(':');
    }
}

/// Closes the innermost container and each one around it that ends there too. Returns the item to write next; null at
/// the end of all.
const cJSON* Leave(std::string& text, Containers& open)
{
    const cJSON* next = nullptr;
    while (next == nullptr && !open.empty())
    {
        const cJSON& container = *open.back();
        open.pop_back();
        text.push_back(cJSON_IsObject(&container) != 0 ? '}' : ']');
        next = open.empty() ? nullptr : container.next;
    }
    return next;
}
} // namespace

void JSONWriter::AppendString(std::string& text, std::string_view value)
{
    text.push_back('"');
    const char* plain = value.data();
    const char* const end = plain + value.size();
    for (const char* escape = FindEscape(plain, end); escape != end; escape = FindEscape(plain, end))
    {
        text.append(plain, escape);
        AppendEscape(text, *escape);
        plain = escape + 1;
    }
    text.append(plain, end).push_back('"');
}

void JSONWriter::AppendNumber(std::string& text, double value)
{
    if (!std::isfinite(value))
    {
        text.append("null");
    }
    else if (IsInt32(value))
    {
        AppendDigits(text, static_cast<std::int32_t>(value));
    }
    else if (IsWithinEpsilon(std::floor(value), value))
    {
        AppendDigits(text, value, std::chars_format::fixed, 0);
    }
    else
    {
        const double magnitude = std::fabs(value);
        const bool isPlain = magnitude >= 1e-6 && magnitude <= 1e9;
        AppendDigits(text, value, isPlain ? std::chars_format::fixed : std::chars_format::scientific, 6);
    }
}

void JSONWriter::AppendContainer(std::string& text, const cJSON& container)
{
    Containers open;
    const cJSON* position = &container;
    while (position != nullptr)
    {
        if (!open.empty())
        {
            AppendPrefix(text, *open.back(), *position);
        }
        if (!IsContainer(*position))
        {
            AppendScalar(text, *position);
            position = position->next != nullptr ? position->next : Leave(text, open);
        }
        else
        {
            text.push_back(cJSON_IsObject(position) != 0 ? '{' : '[');
            open.push_back(position);
            position = position->child != nullptr ? position->child : Leave(text, open);
        }
    }
}
} // namespace Zent::Utils::Json
