#include "HttpText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace Zent::Discovery::Page
{
namespace
{
std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    });
    return lower;
}

bool IsPort(std::string_view text)
{
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, port);
    return text.empty() || (result.ec == std::errc() && result.ptr == end);
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The part of the text before the separator, which is taken away with it.
std::string_view TakePart(std::string_view& text, char separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

std::optional<std::string> Decoded(std::string_view text)
{
    std::string decoded;
    while (!text.empty())
    {
        char each = text.front() == '+' ? ' ' : text.front();
        std::size_t length = 1;
        if (each == '%')
        {
            std::uint8_t value = 0;
            length = 3;
            const char* const digits = text.data() + 1;
            if (text.size() < length || std::from_chars(digits, digits + 2, value, 16).ptr != digits + 2)
            {
                return std::nullopt;
            }
            each = static_cast<char>(value);
        }
        decoded += each;
        text.remove_prefix(length);
    }
    return decoded;
}
} // namespace

std::optional<std::string> HttpText::HostOf(std::string_view value)
{
    std::string_view host = value;
    std::string_view port;
    if (host.starts_with('['))
    {
        const std::size_t end = host.find(']');
        if (end == std::string_view::npos)
        {
            return std::nullopt;
        }
        port = host.substr(end + 1);
        host = host.substr(1, end - 1);
    }
    else if (const std::size_t colon = host.find(':'); colon != std::string_view::npos)
    {
        port = host.substr(colon);
        host = host.substr(0, colon);
    }
    const bool isPort = port.empty() || (port.front() == ':' && IsPort(port.substr(1)));
    return isPort && !host.empty() ? std::optional(Lower(host)) : std::nullopt;
}

std::optional<std::string> HttpText::Cookie(std::string_view value, std::string_view name)
{
    while (!value.empty())
    {
        std::string_view text = Trimmed(TakePart(value, ';'));
        if (TakePart(text, '=') == name)
        {
            return std::string(text);
        }
    }
    return std::nullopt;
}

std::optional<std::string> HttpText::FormField(std::string_view body, std::string_view name)
{
    while (!body.empty())
    {
        std::string_view text = TakePart(body, '&');
        if (TakePart(text, '=') == name)
        {
            return Decoded(text);
        }
    }
    return std::nullopt;
}

std::optional<std::string> HttpText::BearerToken(std::string_view value)
{
    std::string_view text = Trimmed(value);
    if (Lower(TakePart(text, ' ')) != "bearer" || Trimmed(text).empty())
    {
        return std::nullopt;
    }
    return std::string(Trimmed(text));
}
} // namespace Zent::Discovery::Page
