#pragma once

#include "Fleet/SiteReading.h"

#include <cstddef>
#include <list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Reads sites from a broker, and finds out which there are. The records of one site after those of another, so that
/// the broker never has to keep those of many for a slow reader.
class FleetReading final
{
public:
    using Time = SiteReading::Time;

    /// Nothing tells how many sites there are. Where a broker with the settings that it comes with gives no more
    /// states, there may be others.
    static constexpr std::size_t FewestCutSites = 1000;

    /// sites are their names; all that there are when it is empty.
    /// @throws std::invalid_argument with the reason when one is no site's name.
    FleetReading(const std::vector<std::string>& sites, SiteReading::ReadingScope scope);

    /// A message of any topic.
    void Take(std::string_view topic, std::string_view bytes, Time now);

    /// What is to be asked for now.
    std::vector<ReadingRequest> Advance(Time now);

    /// When to call Advance again, at the latest.
    Time NextTime() const;

    bool IsOver() const;

    /// All sites in the order of their names, or as they were given.
    const std::list<SiteReading>& Sites() const { return sites; }

    /// What is missing, a text for each fault; empty when nothing is.
    std::vector<std::string> Shortfalls() const;

private:
    /// The sites that are being read.
    std::vector<SiteReading*> Active();

    Time SearchEnd() const;
    void EndSearch();

    const SiteReading::ReadingScope scope;
    bool isSearching;
    bool hasAsked = false;
    Time lastFound{0};
    std::set<std::string> found; // names, by the search
    std::list<SiteReading> sites;
};
} // namespace Zent::Discovery::Fleet
