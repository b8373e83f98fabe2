#include "Fleet/SiteState.h"

#include "HostileJson.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <tuple>

using Json = Zent::Discovery::Fleet::HostileJson::Json;

namespace Zent::Discovery::Fleet
{
namespace
{
constexpr std::string_view KindNames[] = {"ready", "lost", "disconnected"};
constexpr std::size_t MaximumBytes = 4096;
} // namespace

SiteState SiteState::Parse(std::string_view bytes)
{
    const Json document = HostileJson::ParseObject(bytes, MaximumBytes);
    const auto* const kind = std::ranges::find(KindNames, HostileJson::Text(document, "State"));
    const std::optional<WallTime> started = UtcTime::Parse(HostileJson::Text(document, "Started"));
    if (kind == std::end(KindNames) || !started)
    {
        throw std::invalid_argument(kind == std::end(KindNames) ? "\"State\" is unknown" : "\"Started\" is no time");
    }
    return {static_cast<StateKind>(kind - std::begin(KindNames)), HostileJson::Text(document, "Agent"),
            HostileJson::Text(document, "Machine"), *started};
}

const char* SiteState::KindName() const
{
    return KindNames[static_cast<std::size_t>(Kind)].data();
}

bool SiteState::IsBefore(const SiteState& other) const
{
    return std::tie(Started, Agent) < std::tie(other.Started, other.Agent);
}

std::string SiteState::ToJson() const
{
    return HostileJson::Dump(
        {{"State", KindName()}, {"Agent", Agent}, {"Machine", Machine}, {"Started", UtcTime::ToText(Started)}});
}
} // namespace Zent::Discovery::Fleet
