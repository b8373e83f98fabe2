#pragma once

#include "Inventory/AddressSweep.h"
#include "Inventory/SearchOptions.h"
#include "Inventory/SearchReport.h"
#include "Inventory/Time.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Zent::Discovery::Inventory
{
class Device;
class Questions;

/// Finds all devices, and says whether it has: asks again and again until every answer is accounted for and an estimate
/// of what is still unseen comes to nothing. One thread at a time.
class Search final
{
public:
    /// @throws std::invalid_argument when the options are not possible: Also has more than MaximumAlso addresses.
    static void Check(const SearchOptions& options);

    /// Starts, with options that are possible. The questions must outlive the search.
    Search(SearchOptions options, Questions& questions, Time now);

    /// Takes an answer. id tells the device from all others and is the same for all its interfaces.
    void Heard(std::uint64_t id, const Device& device, Time now);

    /// A device has left.
    void Forget(std::uint64_t id);

    /// How many answers this machine has lost by now, since any moment; nothing when that is unknown.
    void Counted(std::optional<std::uint64_t> lost, Time now);

    void Advance(Time now);

    /// An address could not be asked, for there is no route to it.
    void NoteNoRoute();

    /// Ends it as it is.
    void Stop(Time now);

    bool IsOver() const;

    /// So far; the last round may still be running.
    const SearchReport& Report() const;

    /// When to call Advance again, at the latest.
    Time NextTime(Time now) const;

private:
    using Question = SearchReport::Round::Question;

    enum class Phase
    {
        Beginning, // of a round: until the lost answers are counted
        Asking,
        Closing, // the end of a round: until they are counted again
        Over
    };

    static constexpr std::uint64_t NoTarget = static_cast<std::uint64_t>(-1);

    struct Found
    {
        std::unordered_set<std::string> Answerers; // the interfaces that it answered on
        std::uint64_t HeardIn = 0;                 // a bit for each of the first rounds
        unsigned Captures = 0;                     // rounds, other than lists, in which it was heard
        std::size_t LastRound = static_cast<std::size_t>(-1);
    };

    void StartRound(Question asked, Time now);
    void AskNextAddresses(Time now);
    bool IsRoundOver(Time now) const;
    void CloseRound(Time now, bool isLast);
    void ConcludeRound(std::optional<std::uint64_t> lost, Time now);
    void StartNextRound(Time now);
    void NoteTime(bool isNews, Time now);

    bool IsAccountedFor(const SearchReport::Round& round) const;
    bool MayHaveLostAnswers(const SearchReport::Round& round) const;
    bool IsComplete() const;
    bool HasFoundNothing(Time now) const;
    std::uint64_t RoundsOfAll() const;
    double EstimateUnseen() const;
    double ChanceOfMissing() const;
    bool IsAsking() const;

    const SearchOptions options;
    Questions& questions;
    const Time start;

    Phase phase = Phase::Beginning;
    bool isLastRound = false;
    Time phaseStart;
    Time lastNews;           // when an address was asked, or an answer came that the round had not heard
    Time lastFind;           // of a device in this round
    Time slowest{0};         // answer to a question to all
    std::deque<Time> recent; // answers within CrowdTime
    std::optional<std::uint64_t> lostBefore;

    std::unordered_map<std::uint64_t, Found> found;
    std::unordered_set<std::string> heardFrom; // in this round: the interfaces
    AddressSweep::Addresses addresses;         // of the devices found
    std::size_t answerers = 0;                 // interfaces that devices answered on in any round
    bool hasForeign = false;                   // a device answered whose address is in no network that can be swept

    AddressSweep list;                    // what is left of them in this round,
    AddressSweep sweep;                   // and in this and later ones
    std::uint64_t answered = NoTarget;    // in the last round of questions to all, as far as that is known
    std::uint64_t sweepTarget = NoTarget; // so many answerers end the sweep
    bool isSweepDue = false;
    bool isRefused = false; // there was no route to an address of this sweep
    bool wasSwept = false;  // all addresses of the local networks have been asked
    int sweeps = 0;
    int lists = 0;
    SearchReport report;
};
} // namespace Zent::Discovery::Inventory
