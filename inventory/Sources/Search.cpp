#include "Inventory/Search.h"

#include "Inventory/Device.h"
#include "Inventory/Questions.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
constexpr Time QuietTime{300};    // without an answer; ends a round
constexpr Time FirstRound{1000};  // lasts at least that long
constexpr Time CountTime{200};    // for the host program to count lost answers; then their number is unknown
constexpr Time NothingTime{3000}; // after which a search that has found nothing ends
constexpr Time CrowdTime{50};
constexpr std::size_t Crowd = 40;   // so many answers within CrowdTime may fill a receive buffer
constexpr int MaximumSweeps = 2;    // they load the network, and look like an attack to those who watch it
constexpr int ListPasses = 2;       // an answer may be lost on its way
constexpr Time Patience{1000};      // of a sweep that finds nobody
constexpr double Negligible = 0.05; // devices unseen
constexpr double Improbable = 0.002;
constexpr std::size_t RoundBits = 64;

/// How many devices nobody has seen, by Chao's estimator: from how many were seen in exactly one and two rounds.
double Chao(std::size_t once, std::size_t twice)
{
    const auto f1 = static_cast<double>(once);
    const auto f2 = static_cast<double>(twice);
    return once == 0 ? 0 : f1 * (f1 - 1) / (2 * (f2 + 1));
}
} // namespace

Search::Search(SearchOptions options, Questions& questions, Time now)
    : options(std::move(options))
    , questions(questions)
    , start(now)
    , phaseStart(now)
    , lastNews(now)
    , lastFind(now)
{
    questions.CountLost();
}

void Search::Check(const SearchOptions& options)
{
    AddressSweep::OfList(options.Also, {}, SearchOptions::MaximumAlso);
}

void Search::Heard(std::uint64_t id, const Device& device, Time now)
{
    if (IsOver())
    {
        return;
    }
    const Device::Interface& source = device.MainInterface();
    const std::string answerer = source.HasMACAddress() ? source.MACAddress : std::to_string(id);
    for (const Device::Interface& interface : device.Interfaces())
    {
        if (const std::optional<IPv4> address = Network::ParseAddress(interface.IPAddress))
        {
            addresses.insert(*address);
        }
    }
    const std::optional<IPv4> address = Network::ParseAddress(source.IPAddress);
    hasForeign = hasForeign || !address || !AddressSweep::Covers(options.Networks, *address);

    const auto [place, isNew] = found.try_emplace(id);
    Found& each = place->second;
    answerers += each.Answerers.insert(answerer).second ? 1u : 0u;
    report.Devices = found.size();
    if (phase != Phase::Beginning)
    {
        SearchReport::Round& round = report.Rounds.back();
        const std::size_t number = report.Rounds.size() - 1;
        if (round.Asked != Question::List && each.LastRound != number)
        {
            each.LastRound = number;
            ++each.Captures;
            each.HeardIn |= number < RoundBits ? std::uint64_t{1} << number : 0;
        }
        round.New += isNew ? 1u : 0u;
        lastFind = isNew ? now : lastFind;
        const bool isNews = heardFrom.insert(answerer).second;
        round.Answers = heardFrom.size();
        NoteTime(isNews, now);
    }
    if (options.Expect > 0 && found.size() >= options.Expect && phase == Phase::Asking)
    {
        CloseRound(now, true);
    }
}

/// Of an answer in a round.
void Search::NoteTime(bool isNews, Time now)
{
    recent.push_back(now);
    while (recent.front() + CrowdTime < now)
    {
        recent.pop_front();
    }
    SearchReport::Round& round = report.Rounds.back();
    round.IsCrowded = round.IsCrowded || recent.size() >= Crowd;
    if (isNews && phase == Phase::Asking)
    {
        lastNews = now;
        slowest = round.Asked == Question::All ? std::max(slowest, now - phaseStart) : slowest;
    }
}

void Search::Forget(std::uint64_t id)
{
    const auto known = found.find(id);
    if (!IsOver() && known != found.end())
    {
        answerers -= known->second.Answerers.size();
        found.erase(known);
        report.Devices = found.size();
    }
}

void Search::NoteNoRoute()
{
    isRefused = true;
}

void Search::Counted(std::optional<std::uint64_t> lost, Time now)
{
    if (phase == Phase::Beginning)
    {
        lostBefore = lost;
        StartRound(Question::All, now);
    }
    else if (phase == Phase::Closing)
    {
        const std::optional<std::uint64_t> before = std::exchange(lostBefore, lost);
        // The counter of a new socket starts again: what the old one has lost since is unknown.
        const bool isKnown = lost && before && *lost >= *before;
        ConcludeRound(isKnown ? std::optional(*lost - *before) : std::nullopt, now);
    }
}

void Search::Advance(Time now)
{
    report.Elapsed = IsOver() ? report.Elapsed : now - start;
    if ((phase == Phase::Beginning || phase == Phase::Closing) && now >= phaseStart + CountTime)
    {
        Counted(std::nullopt, now);
    }
    if (phase != Phase::Asking)
    {
        return;
    }
    AskNextAddresses(now);
    if (now >= start + options.Wait || HasFoundNothing(now))
    {
        CloseRound(now, true);
    }
    else if (IsRoundOver(now))
    {
        CloseRound(now, false);
    }
}

void Search::Stop(Time now)
{
    if (!IsOver())
    {
        phase = Phase::Over;
        report.IsOver = true;
        report.Elapsed = now - start;
    }
}

bool Search::IsOver() const
{
    return phase == Phase::Over;
}

const SearchReport& Search::Report() const
{
    return report;
}

Time Search::NextTime(Time now) const
{
    return IsOver() ? Time::max() : now + (IsAsking() ? Time{5} : Time{20});
}

void Search::StartRound(Question asked, Time now)
{
    report.Rounds.emplace_back().Asked = asked;
    heardFrom.clear();
    recent.clear();
    phase = Phase::Asking;
    phaseStart = now;
    lastNews = now;
    lastFind = now;
    if (asked == Question::All)
    {
        questions.AskAll();
    }
    AskNextAddresses(now);
}

/// Asks as many of the sweep or list as may be asked now.
void Search::AskNextAddresses(Time now)
{
    const Question asked = report.Rounds.back().Asked;
    if (asked == Question::Sweep && answerers >= sweepTarget)
    {
        sweep = {}; // all are known that answered
    }
    AddressSweep& left = asked == Question::Sweep ? sweep : list;
    while (IsAsking() && questions.CanAskIP(now))
    {
        const std::optional<IPv4> address = left.Next(addresses);
        if (!address)
        {
            return;
        }
        questions.AskIP(Network::TextOf(*address), now);
        lastNews = now;
    }
}

/// Whether addresses of this round are still to be asked.
bool Search::IsAsking() const
{
    const Question asked = report.Rounds.empty() ? Question::All : report.Rounds.back().Asked;
    return (asked == Question::Sweep && !sweep.IsAtEnd()) || (asked == Question::List && !list.IsAtEnd());
}

bool Search::IsRoundOver(Time now) const
{
    const Question asked = report.Rounds.back().Asked;
    if (options.Once)
    {
        return false;
    }
    if (IsAsking())
    {
        // Empty addresses take long. Another question to all may find the missing ones sooner; then the sweep goes on.
        return asked == Question::Sweep && now - lastFind >= Patience;
    }
    if (asked != Question::All)
    {
        return now - lastNews >= std::max(QuietTime, 2 * slowest);
    }
    const Time shortest = report.Rounds.size() == 1 ? FirstRound : 2 * slowest;
    return now - lastNews >= QuietTime && now - phaseStart >= shortest;
}

void Search::CloseRound(Time now, bool isLast)
{
    phase = Phase::Closing;
    phaseStart = now;
    isLastRound = isLast;
    questions.CountLost();
}

void Search::ConcludeRound(std::optional<std::uint64_t> lost, Time now)
{
    SearchReport::Round& round = report.Rounds.back();
    round.Lost = lost;
    if (round.Asked == Question::Sweep)
    {
        const bool isEverywhere = std::ranges::all_of(options.Networks, [](const Network& network) {
            return network.PrefixLength >= AddressSweep::ShortestPrefix;
        });
        wasSwept = wasSwept || (sweepTarget == NoTarget && sweep.IsAtEnd() && !isRefused && isEverywhere);
    }
    else if (round.Asked == Question::All)
    {
        isSweepDue = MayHaveLostAnswers(round) && !IsAccountedFor(round);
        answered = lost ? round.Answers + *lost : NoTarget;
    }
    report.EstimatedUnseen = EstimateUnseen();
    report.Complete = !options.Once && IsComplete();
    if (report.Complete || isLastRound)
    {
        Stop(now);
        return;
    }
    StartNextRound(now);
}

void Search::StartNextRound(Time now)
{
    const auto broadcasts = std::ranges::count(report.Rounds, Question::All, &SearchReport::Round::Asked);
    if (lists < std::min<std::ptrdiff_t>(broadcasts, ListPasses) && !options.Also.empty())
    {
        ++lists;
        list = AddressSweep::OfList(options.Also, addresses, SearchOptions::MaximumAlso);
        if (!list.IsAtEnd())
        {
            StartRound(Question::List, now);
            return;
        }
    }
    if (std::exchange(isSweepDue, false) && options.Sweep)
    {
        if (sweep.IsAtEnd() && sweeps < MaximumSweeps)
        {
            ++sweeps;
            isRefused = false;
            sweep = AddressSweep::OfNetworks(options.Networks, addresses);
        }
        if (!sweep.IsAtEnd())
        {
            sweepTarget = answered;
            StartRound(Question::Sweep, now);
            return;
        }
    }
    StartRound(Question::All, now);
}

bool Search::MayHaveLostAnswers(const SearchReport::Round& round) const
{
    return round.Lost ? *round.Lost > 0 : round.IsCrowded;
}

/// Whether all are known that answered in the round, which was one of questions to all.
bool Search::IsAccountedFor(const SearchReport::Round& round) const
{
    if (round.Asked != Question::All || round.Answers == 0)
    {
        return false;
    }
    if (round.Lost)
    {
        return round.Answers + *round.Lost <= answerers;
    }
    // A sweep has reached those whose answers were lost, unless there may be some where none can be made.
    return !round.IsCrowded || (wasSwept && !hasForeign);
}

bool Search::IsComplete() const
{
    std::size_t fruitless = 0; // rounds since one brought somebody new
    for (const SearchReport::Round& round : report.Rounds)
    {
        if (round.Asked != Question::List)
        {
            fruitless = round.New > 0 ? 0 : fruitless + 1;
        }
    }
    return !found.empty() && fruitless >= 2 && (options.Also.empty() || lists == ListPasses) &&
           report.EstimatedUnseen < Negligible && ChanceOfMissing() < Improbable &&
           std::ranges::any_of(report.Rounds, [this](const auto& round) { return IsAccountedFor(round); });
}

bool Search::HasFoundNothing(Time now) const
{
    const bool isAnybodyHeard = !found.empty() || std::ranges::any_of(report.Rounds, [](const auto& round) {
        return round.Lost.value_or(0) > 0;
    });
    const bool isListOver = options.Also.empty() || lists == ListPasses;
    return !isAnybodyHeard && !options.Once && isListOver && !IsAsking() && now >= start + NothingTime;
}

/// A bit for each of the first rounds in which those who answered, heard or lost, were just as many as are known now:
/// each known one was among them.
std::uint64_t Search::RoundsOfAll() const
{
    std::uint64_t all = 0;
    for (std::size_t i = 0; i < std::min(report.Rounds.size(), RoundBits); ++i)
    {
        const SearchReport::Round& round = report.Rounds[i];
        const bool isAll = round.Lost && IsAccountedFor(round) && round.Answers + *round.Lost == answerers;
        all |= isAll ? std::uint64_t{1} << i : 0;
    }
    return all;
}

double Search::EstimateUnseen() const
{
    const std::uint64_t all = RoundsOfAll();
    std::size_t once = 0;
    std::size_t twice = 0;
    for (const auto& [id, each] : found)
    {
        const auto captures = each.Captures + static_cast<unsigned>(std::popcount(all & ~each.HeardIn));
        once += captures == 1 ? 1u : 0u;
        twice += captures == 2 ? 1u : 0u;
    }
    return Chao(once, twice);
}

/// How many devices may have been missed by each question to all, if each device is as likely to be missed as the known
/// ones were. Where these are few, that there was nobody seen only once proves little.
double Search::ChanceOfMissing() const
{
    const std::uint64_t all = RoundsOfAll();
    const auto known = static_cast<double>(answerers);
    double rounds = 0;
    double missed = 0; // of the known ones in all of these rounds
    for (std::size_t i = 0; i < report.Rounds.size(); ++i)
    {
        const SearchReport::Round& round = report.Rounds[i];
        if (round.Asked == Question::All)
        {
            const bool isAll = i < RoundBits && (all >> i & 1) != 0;
            missed += isAll ? 0 : std::max(known - static_cast<double>(round.Answers), 0.0);
            ++rounds;
        }
    }
    // Who was missed once is the more likely to be missed again, the less is known of the chance: the rule of
    // succession, with a guess that answers are rarely lost.
    constexpr double Guess = 0.1;
    double unseen = known;
    for (double before = 0; before < rounds; ++before)
    {
        unseen *= (missed + Guess + before) / (known * rounds + Guess + 1 + before);
    }
    return unseen;
}
} // namespace Zent::Discovery::Inventory
