#pragma once

#include "Fleet/DeviceRecord.h"
#include "Fleet/Manifest.h"
#include "Fleet/SiteState.h"
#include "Fleet/Topics.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// What a reader is to do next on its connection to a broker.
struct ReadingRequest
{
    std::string Filter;
    bool IsEnd = false; // of the subscription, which begins otherwise
};

/// Reads a site from a broker that may give a subscriber less than it has, and tell nobody: asks for all records at
/// once, compares what comes with the manifest, and asks for what is missing topic by topic.
class SiteReading final
{
public:
    /// Since any moment, by a clock that is never set back.
    using Time = std::chrono::milliseconds;

    enum class ReadingScope
    {
        Summary, // the state, and how many devices there are
        Devices
    };

    using Records = std::map<std::string, DeviceRecord>; // by the device's id

    /// So many topics are asked for at a time: brokers keep a thousand messages for a slow reader, and often fewer.
    static constexpr std::size_t MaximumAsked = 100;

    /// How long a broker may be silent before what was asked for counts as not there, of which it says nothing.
    static constexpr Time AnswerTime{3000};

    /// How long it may be silent in the middle of many records.
    static constexpr Time PauseTime{500};

    /// How often a topic is asked for that does not come.
    static constexpr unsigned MaximumAttempts = 2;

    /// @throws std::invalid_argument with the reason when it is no site's name.
    SiteReading(std::string site, ReadingScope scope);

    /// A message of one of the site's topics; one that is not as it should be counts as not received.
    void Take(const Topic& topic, std::string_view bytes, Time now);

    /// What is to be asked for now; begins with the first call.
    std::vector<ReadingRequest> Advance(Time now);

    /// When to call Advance again, at the latest.
    Time NextTime() const;

    bool IsBegun() const { return phase != Phase::Starting; }

    /// Whether there is nothing more to wait for; what was found stays as it is from then on.
    bool IsOver() const { return phase == Phase::Over; }

    const std::string& Site() const { return topics.Site(); }

    /// Nothing when the broker has none.
    const std::optional<SiteState>& State() const { return state; }

    /// The site's state, or "unknown".
    const char* StateName() const { return state ? state->KindName() : "unknown"; }

    /// What is known of the device now: of a site that is not ready nothing is.
    const char* StateNameOf(const DeviceRecord& record) const;

    /// How many devices the manifest tells of; nothing without one.
    std::optional<std::size_t> Expected() const;

    /// Of the devices that the manifest tells of.
    std::size_t Received() const { return told.size() - missing.size(); }

    /// Empty when everything has been read that the manifest tells of, else for people: "site b: 412 of 1000 received".
    std::string Shortfall() const;

    /// What was received. Without those that a whole manifest does not tell of: they are about to be removed, or too
    /// new for it.
    const Records& Devices() const { return records; }

private:
    enum class Phase
    {
        Starting,
        Together, // all records are coming
        OneByOne,
        Over
    };

    void TakeState(std::string_view bytes);
    void TakeManifest(std::size_t part, std::string_view bytes);
    void TakeRecord(const std::string& id, std::string_view bytes, bool wasAsked, Time now);
    void Compare();
    bool HasAll() const;
    std::vector<std::string> Wanted() const;
    void Ask(const std::string& topic);
    void Close(const std::string& topic);
    void GiveUpOpen();
    void End();

    const SiteTopics topics;
    const ReadingScope scope;
    Phase phase = Phase::Starting;
    Time lastProgress{0};
    std::vector<ReadingRequest> requests;
    std::map<std::string, unsigned> attempts; // by topic
    std::set<std::string> open;               // topics that were asked for and have not come
    std::set<std::string> kept;               // topics that stay subscribed: what is told may change meanwhile

    std::optional<SiteState> state;
    ManifestReader manifest;
    Manifest::Revisions told;
    std::set<std::string> missing; // of these, ids
    std::set<std::string> current; // ids of those that the broker gave for their topics alone
    Records records;
};
} // namespace Zent::Discovery::Fleet
