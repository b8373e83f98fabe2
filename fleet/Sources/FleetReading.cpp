#include "Fleet/FleetReading.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
void Append(std::vector<Conversation::Step>& all, std::vector<Conversation::Step> more)
{
    std::ranges::move(more, std::back_inserter(all));
}
} // namespace

FleetReading::FleetReading(const std::vector<std::string>& sites,
                           SiteReading::ReadingScope scope,
                           ReadingListener& listener)
    : scope(scope)
    , isOpen(sites.empty())
    , listener(listener)
{
    for (const std::string& site : sites)
    {
        if (!byName.contains(site))
        {
            byName.emplace(site, this->sites.emplace(this->sites.end(), site, scope, listener));
        }
    }
}

void FleetReading::Take(std::string_view topic, std::string_view bytes, bool isRetained, Time now)
{
    const std::optional<Topic> parsed = Topic::Parse(topic);
    SiteReading* const site = parsed ? Find(*parsed, !bytes.empty()) : nullptr;
    if (site == nullptr)
    {
        return;
    }
    if (phase != Phase::Reading && isRetained)
    {
        TakeFound(parsed->Site, now);
    }
    try
    {
        site->Take(*parsed, bytes, isRetained, now);
    }
    catch (const std::invalid_argument&) // nobody has promised anything of the bytes
    {
        ++unreadable;
    }
}

std::vector<Conversation::Step> FleetReading::Advance(Time now)
{
    if (phase == Phase::Starting && isOpen)
    {
        return {Search(Phase::Searching, now)};
    }
    if ((phase == Phase::Searching || phase == Phase::Counting) && now < SearchEnd())
    {
        return {};
    }
    if (phase == Phase::Searching && !found.empty())
    {
        endMark = *found.begin();
        return {Search(Phase::Counting, now)};
    }
    isCut = phase == Phase::Reading ? isCut : phase == Phase::Counting && !hasEndMark;
    phase = Phase::Reading;
    found.clear();

    std::vector<Step> steps;
    for (SiteReading& site : sites)
    {
        Append(steps, site.Conclude(now));
    }
    Append(steps, Forget());
    std::size_t questions = 0;
    bool isAnswering = false;
    bool isStreaming = false;
    for (const SiteReading& site : sites)
    {
        questions += site.Questions();
        isAnswering = isAnswering || (site.Questions() > 0 && site.Silences() == 0);
        isStreaming = isStreaming || site.IsStreaming();
    }
    // A broker drops answers behind the many records of a site. Those that tell of much that is not there hold up
    // neither records nor all questions.
    for (SiteReading& site : sites)
    {
        const std::size_t most = isStreaming ? 0 : site.Silences() == 0 ? MaximumQuestions : MaximumQuestions / 2;
        const std::size_t before = site.Questions();
        Append(steps, site.Advance(now, {most - std::min(most, questions), !isStreaming && !isAnswering}));
        questions += site.Questions() - before;
        isAnswering = isAnswering || (site.Questions() > 0 && site.Silences() == 0);
        isStreaming = isStreaming || site.IsStreaming();
    }
    return steps;
}

FleetReading::Time FleetReading::NextTime() const
{
    Time next = phase == Phase::Reading ? Time::max() : SearchEnd();
    for (const SiteReading& site : sites)
    {
        next = std::min(next, site.NextTime());
    }
    return next;
}

void FleetReading::Doubt()
{
    std::ranges::for_each(sites, &SiteReading::Doubt);
}

void FleetReading::Disconnect()
{
    phase = Phase::Starting;
    std::ranges::for_each(sites, &SiteReading::Disconnect);
}

bool FleetReading::IsOver() const
{
    return phase == Phase::Reading && std::ranges::all_of(sites, &SiteReading::IsRead);
}

std::vector<std::string> FleetReading::Shortfalls() const
{
    std::vector<std::string> all;
    for (const SiteReading& site : sites)
    {
        if (!site.Text().empty())
        {
            all.push_back("site " + site.Site() + ": " + site.Text());
        }
    }
    if (std::string text = HiddenSites(); !text.empty())
    {
        all.push_back(std::move(text));
    }
    return all;
}

std::string FleetReading::HiddenSites() const
{
    const std::string count = std::to_string(sites.size()) + " sites found, ";
    if (isCut)
    {
        return count + "and there may be others: the broker gives no more at once. Raise its max_queued_messages, or "
                       "name the sites with --site";
    }
    const bool isFull = isOpen && sites.size() >= MaximumSites;
    return isFull ? count + "and further ones are left out unless they are named with --site" : "";
}

/// Brokers drop what is too much for a reader behind that which they give: a state that is asked for once more behind
/// all others comes only when all of them have come.
FleetReading::Step FleetReading::Search(Phase next, Time now)
{
    phase = next;
    lastFound = now;
    foundBefore = std::exchange(found, {}).size();
    hasEndMark = false;
    return {.Kind = Step::StepKind::Search,
            .Topic = SiteTopics::AllStates(),
            .EndMark = phase == Phase::Counting ? SiteTopics(endMark).State() : ""};
}

void FleetReading::TakeFound(const std::string& site, Time now)
{
    if (found.insert(site).second)
    {
        lastFound = now;
    }
    else if (phase == Phase::Counting && site == endMark)
    {
        hasEndMark = true;
    }
}

SiteReading& FleetReading::Add(const std::string& site)
{
    const auto behind = byName.upper_bound(site);
    const auto added = sites.emplace(behind == byName.end() ? sites.end() : behind->second, site, scope, listener);
    byName.emplace_hint(behind, site, added);
    return *added;
}

/// The site of a topic, which may be a new one; null when it is none of these.
SiteReading* FleetReading::Find(const Topic& topic, bool isThere)
{
    if (const auto known = byName.find(topic.Site); known != byName.end())
    {
        return &*known->second;
    }
    const bool isNew = isOpen && isThere && topic.Kind == Topic::TopicKind::State && sites.size() < MaximumSites;
    return isNew ? &Add(topic.Site) : nullptr;
}

FleetReading::Time FleetReading::SearchEnd() const
{
    return phase == Phase::Starting || (hasEndMark && found.size() >= foundBefore)
               ? Time(0)
               : lastFound + (found.empty() ? SiteReading::AnswerTime : SiteReading::PauseTime);
}

std::vector<Conversation::Step> FleetReading::Forget()
{
    std::vector<Step> steps;
    for (auto site = sites.begin(); isOpen && site != sites.end();)
    {
        const auto next = std::next(site);
        if (site->IsForgotten())
        {
            Append(steps, site->End());
            listener.TakeForgotten(site->Site());
            byName.erase(site->Site());
            sites.erase(site);
        }
        site = next;
    }
    return steps;
}
} // namespace Zent::Discovery::Fleet
