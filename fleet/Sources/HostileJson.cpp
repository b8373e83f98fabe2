#include "HostileJson.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace Zent::Discovery::Fleet
{
HostileJson::Json HostileJson::ParseObject(std::string_view text, std::size_t maximumBytes)
{
    if (text.size() > maximumBytes)
    {
        throw std::invalid_argument("longer than " + std::to_string(maximumBytes) + " bytes");
    }
    // Written out again by recursion, a deep document would take the stack.
    const auto limitDepth = [](int depth, Json::parse_event_t /*event*/, Json& /*parsed*/) {
        if (depth > MaximumDepth)
        {
            throw std::invalid_argument("nested deeper than " + std::to_string(MaximumDepth) + " levels");
        }
        return true;
    };
    try
    {
        Json value = Json::parse(text.begin(), text.end(), limitDepth);
        if (!value.is_object())
        {
            throw std::invalid_argument("no JSON object");
        }
        return value;
    }
    catch (const Json::exception& error)
    {
        throw std::invalid_argument(ValidUtf8(error.what()));
    }
}

std::string HostileJson::Text(const Json& object, const char* key, std::size_t maximumBytes)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
    {
        throw std::invalid_argument(std::string("\"") + key + "\" is no text");
    }
    const std::string& text = found->get_ref<const std::string&>();
    if (text.size() > maximumBytes)
    {
        throw std::invalid_argument(std::string("\"") + key + "\" is longer than " + std::to_string(maximumBytes) +
                                    " bytes");
    }
    return text;
}

std::string HostileJson::Dump(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string HostileJson::ValidUtf8(std::string_view text)
{
    return Json::parse(Dump(Json(text))).get<std::string>();
}

std::string HostileJson::Digest(std::string_view text)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const char each : text)
    {
        hash = (hash ^ static_cast<unsigned char>(each)) * 1099511628211U;
    }
    char digits[24];
    std::snprintf(digits, sizeof(digits), "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}
} // namespace Zent::Discovery::Fleet
