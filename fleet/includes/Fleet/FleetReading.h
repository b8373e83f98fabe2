#pragma once

#include "Fleet/ReadingListener.h"
#include "Fleet/SiteReading.h"

#include <cstddef>
#include <list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Reads sites from a broker, and finds out which there are. Is over once all of them have been read, and goes on for
/// as long as it is advanced: it finds new sites, what changes, and those that are removed. One thread.
class FleetReading final
{
public:
    using Time = Conversation::Time;
    using Step = Conversation::Step;

    /// Further ones are left out, unless they are named.
    static constexpr std::size_t MaximumSites = 10000;

    /// So many topics are asked for at a time: brokers keep a thousand messages for a slow reader, and often fewer.
    static constexpr std::size_t MaximumQuestions = 100;

    /// sites are their names; all that there are when it is empty. listener must outlive the object.
    /// @throws std::invalid_argument with the reason when one is no site's name.
    FleetReading(const std::vector<std::string>& sites, SiteReading::ReadingScope scope, ReadingListener& listener);

    /// A message of any topic. isRetained: it was there before the subscription.
    void Take(std::string_view topic, std::string_view bytes, bool isRetained, Time now);

    /// What is to be asked for now, on a connection that is there.
    std::vector<Step> Advance(Time now);

    /// When to call Advance again, at the latest, unless a message comes before.
    Time NextTime() const;

    /// Messages of the broker were lost on their way.
    void Doubt();

    /// The connection is lost; with the next call of Advance there is another one, on which nothing is subscribed.
    void Disconnect();

    bool IsOver() const;

    /// All sites in the order of their names, or as they were given.
    const std::list<SiteReading>& Sites() const { return sites; }

    /// What is missing, a text for each fault; empty when nothing is.
    std::vector<std::string> Shortfalls() const;

    /// Why there may be sites that were not found; empty when there are none.
    std::string HiddenSites() const;

    /// How many messages were not as they should be.
    std::size_t Unreadable() const { return unreadable; }

private:
    enum class Phase
    {
        Starting,
        Searching, // the states of all sites are coming, first those that show which there are
        Counting,  // and then all of them again, with one of them behind the others
        Reading
    };

    Step Search(Phase next, Time now);
    void TakeFound(const std::string& site, Time now);
    SiteReading& Add(const std::string& site);
    SiteReading* Find(const Topic& topic, bool isThere);
    Time SearchEnd() const;
    std::vector<Step> Forget();

    const SiteReading::ReadingScope scope;
    const bool isOpen; // to sites that nobody has named
    ReadingListener& listener;
    Phase phase = Phase::Starting;
    Time lastFound{0};
    std::set<std::string> found; // names, by the search that goes on
    std::size_t foundBefore = 0; // by the one before
    std::string endMark;         // the name of a site whose state comes last, once more
    bool hasEndMark = false;     // it has come
    bool isCut = false;          // the broker has not given all states
    std::list<SiteReading> sites;
    std::map<std::string, std::list<SiteReading>::iterator> byName;
    std::size_t unreadable = 0;
};
} // namespace Zent::Discovery::Fleet
