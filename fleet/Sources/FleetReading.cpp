#include "Fleet/FleetReading.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
/// Of those whose summary is two topics each.
constexpr std::size_t SummariesAtOnce = SiteReading::MaximumAsked / 2;
} // namespace

FleetReading::FleetReading(const std::vector<std::string>& sites, SiteReading::ReadingScope scope)
    : scope(scope)
    , isSearching(sites.empty())
{
    for (const std::string& site : sites)
    {
        if (std::ranges::find(this->sites, site, &SiteReading::Site) == this->sites.end())
        {
            this->sites.emplace_back(site, scope);
        }
    }
}

void FleetReading::Take(std::string_view topic, std::string_view bytes, Time now)
{
    const std::optional<Topic> parsed = Topic::Parse(topic);
    if (!parsed)
    {
        return;
    }
    if (isSearching)
    {
        if (parsed->Kind == Topic::TopicKind::State && !bytes.empty() && found.insert(parsed->Site).second)
        {
            lastFound = now;
        }
        return;
    }
    for (SiteReading* site : Active())
    {
        if (site->Site() == parsed->Site)
        {
            site->Take(*parsed, bytes, now);
        }
    }
}

std::vector<ReadingRequest> FleetReading::Advance(Time now)
{
    if (isSearching && !std::exchange(hasAsked, true))
    {
        lastFound = now;
        return {{SiteTopics::AllStates()}};
    }
    std::vector<ReadingRequest> requests;
    if (isSearching && now >= SearchEnd())
    {
        EndSearch();
        requests.push_back({SiteTopics::AllStates(), true});
    }
    for (bool isChanged = !isSearching; isChanged;) // those that are over make way for others
    {
        isChanged = false;
        for (SiteReading* site : Active())
        {
            std::ranges::move(site->Advance(now), std::back_inserter(requests));
            isChanged = isChanged || site->IsOver();
        }
    }
    return requests;
}

FleetReading::Time FleetReading::NextTime() const
{
    Time next = isSearching ? SearchEnd() : Time::max();
    for (const SiteReading& site : sites)
    {
        next = site.IsBegun() ? std::min(next, site.NextTime()) : next;
    }
    return next;
}

bool FleetReading::IsOver() const
{
    return !isSearching && std::ranges::all_of(sites, &SiteReading::IsOver);
}

std::vector<std::string> FleetReading::Shortfalls() const
{
    std::vector<std::string> all;
    for (const SiteReading& site : sites)
    {
        if (std::string text = site.Shortfall(); !text.empty())
        {
            all.push_back(std::move(text));
        }
    }
    if (found.size() >= FewestCutSites)
    {
        all.push_back(std::to_string(found.size()) +
                      " sites found, and there may be others: a broker with its usual settings gives no more at once");
    }
    return all;
}

std::vector<SiteReading*> FleetReading::Active()
{
    const std::size_t most = scope == SiteReading::ReadingScope::Summary ? SummariesAtOnce : 1;
    std::vector<SiteReading*> active;
    for (auto site = sites.begin(); site != sites.end() && active.size() < most; ++site)
    {
        if (!site->IsOver())
        {
            active.push_back(&*site);
        }
    }
    return active;
}

FleetReading::Time FleetReading::SearchEnd() const
{
    return !hasAsked ? Time{0} : lastFound + (found.empty() ? SiteReading::AnswerTime : SiteReading::PauseTime);
}

void FleetReading::EndSearch()
{
    isSearching = false;
    for (const std::string& site : found)
    {
        sites.emplace_back(site, scope);
    }
}
} // namespace Zent::Discovery::Fleet
