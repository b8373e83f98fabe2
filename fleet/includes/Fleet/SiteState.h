#pragma once

#include "Fleet/UtcTime.h"

#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// What is known of a site's agent: while it is not ready, nobody knows what has become of the devices.
struct SiteState
{
    enum class StateKind
    {
        Ready,
        Lost,        // its connection broke
        Disconnected // it said goodbye
    };

    StateKind Kind;
    std::string Agent;   // a name that no other start of an agent has
    std::string Machine; // that it runs on
    WallTime Started;

    /// @throws std::invalid_argument with the reason when the bytes are none. Whatever a broker gives may come.
    static SiteState Parse(std::string_view bytes);

    bool operator==(const SiteState& other) const = default;

    const char* KindName() const;

    /// Which of two agents of one site goes on: the one that started first. Both of them find the same.
    bool IsBefore(const SiteState& other) const;

    /// {"Agent":"..","Machine":"..","Started":"2026-03-01T12:30:00.250Z","State":"ready"}
    std::string ToJson() const;
};
} // namespace Zent::Discovery::Fleet
