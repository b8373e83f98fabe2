#include "Fleet/SiteEvent.h"

#include "Fleet/Topics.h"
#include "HostileJson.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

using Json = Zent::Discovery::Fleet::HostileJson::Json;

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::string_view SourcePrefix = "/discovery/v1/";
constexpr std::string_view TypePrefix = "discovery.v1.";
constexpr std::string_view Kinds[] = {"appeared", "changed", "left", "gone", "returned", "conflict"};
constexpr std::size_t MaximumBytes = std::size_t{256} * 1024; // a conflict holds two hosts

std::string Behind(std::string_view prefix, const Json& document, const char* key)
{
    const std::string text = HostileJson::Text(document, key);
    if (!text.starts_with(prefix))
    {
        throw std::invalid_argument(std::string("\"") + key + "\" does not begin with " + std::string(prefix));
    }
    return text.substr(prefix.size());
}
} // namespace

SiteEvent SiteEvent::Parse(std::string_view bytes)
{
    const Json document = HostileJson::ParseObject(bytes, MaximumBytes);
    const std::optional<WallTime> when = UtcTime::Parse(HostileJson::Text(document, "time"));
    SiteEvent event{Behind(SourcePrefix, document, "source"),
                    HostileJson::Text(document, "id"),
                    Behind(TypePrefix, document, "type"),
                    document.contains("subject") ? HostileJson::Text(document, "subject") : "",
                    when.value_or(WallTime()),
                    document.contains("data") ? HostileJson::Dump(document["data"]) : "{}"};
    const bool isKnown = std::ranges::find(Kinds, event.Kind) != std::end(Kinds);
    const bool isAboutDevice = event.Device.empty() || DeviceId::Is(event.Device);
    if (!when || !isKnown || !isAboutDevice || !SiteTopics::IsName(event.Site))
    {
        throw std::invalid_argument("no event of a site");
    }
    return event;
}

std::string SiteEvent::ToJson() const
{
    Json document = {{"specversion", "1.0"},
                     {"id", Id},
                     {"source", std::string(SourcePrefix) + Site},
                     {"type", std::string(TypePrefix) + Kind},
                     {"time", UtcTime::ToText(When)},
                     {"datacontenttype", "application/json"}};
    if (!Device.empty())
    {
        document["subject"] = Device;
    }
    std::string text = HostileJson::Dump(document);
    text.pop_back();
    return text + R"(,"data":)" + Details + "}";
}
} // namespace Zent::Discovery::Fleet
