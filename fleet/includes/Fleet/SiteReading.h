#pragma once

#include "Fleet/Conversation.h"
#include "Fleet/DeviceRecord.h"
#include "Fleet/Manifest.h"
#include "Fleet/ReadingListener.h"
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
/// Reads a site from a broker that may give a subscriber less than it has, and tell nobody: lets all records come, and
/// those that change later, compares them with the manifest, and asks for what is missing topic by topic. Goes on for
/// as long as it is advanced. Keeps no records but their revisions, by which it has only those come again over another
/// connection that have changed. One thread.
class SiteReading final
{
public:
    using Time = Conversation::Time;
    using Step = Conversation::Step;

    enum class ReadingScope
    {
        Summary, // the state, and how many devices there are
        Devices,
        Events // and the devices
    };

    /// What the readings of other sites leave to this one, so that the broker does not drop messages for all of them.
    struct ReadingAllowance
    {
        std::size_t Questions; // topics that were asked for and have not come
        bool IsStream;         // whether all records may come
    };

    /// How long a broker may be silent before what was asked for counts as not there, of which it says nothing.
    static constexpr Time AnswerTime{3000};

    /// How long it may be silent in the middle of many records.
    static constexpr Time PauseTime{500};

    /// How often a topic is asked for that does not come.
    static constexpr unsigned MaximumAttempts = 2;

    /// How long nothing is doubted: messages that were dropped, those of the manifest among them, show then.
    static constexpr Time CheckInterval = std::chrono::minutes(10);

    /// The same, while something is missing.
    static constexpr Time RetryInterval = std::chrono::minutes(1);

    /// How often a site is looked for in vain before it is forgotten: a broker that has lost everything has it again
    /// from the agents before.
    static constexpr unsigned MaximumAbsences = 10;

    /// Twice what an agent watches over; further ones are missing.
    static constexpr std::size_t MaximumDevices = 20000;

    /// Of all hosts of the site, which whoever listens may keep; those that would go beyond are missing.
    static constexpr std::size_t MaximumHostBytes = std::size_t{64} * 1024 * 1024;

    /// listener must outlive the object.
    /// @throws std::invalid_argument with the reason when it is no site's name.
    SiteReading(std::string site, ReadingScope scope, ReadingListener& listener);

    /// A message of one of the site's topics. isRetained: it was there before the subscription.
    /// @throws std::invalid_argument with the reason when it is not as it should be; it counts as not received.
    void Take(const Topic& topic, std::string_view bytes, bool isRetained, Time now);

    /// Concludes from silence, and from what has come: questions without an answer are over. What is not to be asked
    /// for any more; before Advance.
    std::vector<Step> Conclude(Time now);

    /// What is to be asked for now; begins with the first call.
    std::vector<Step> Advance(Time now, const ReadingAllowance& allowance);

    /// When to call Conclude again, at the latest, unless a message comes before.
    Time NextTime() const;

    /// All that has come may be out of date.
    void Doubt();

    /// The connection to the broker is lost, so that nobody knows the site's state; begins anew with Advance.
    void Disconnect();

    /// What it has subscribed to, so that nothing more comes.
    std::vector<Step> End();

    /// Whether it has something to ask for or to wait for.
    bool IsBusy() const { return !isSettled; }

    /// Topics that were asked for and have not come.
    std::size_t Questions() const { return open.size(); }

    /// How often questions got no answer since it was doubted.
    unsigned Silences() const { return silences; }

    /// Whether all records are coming.
    bool IsStreaming() const { return phase == Phase::Streaming; }

    /// Whether there was nothing more to wait for at some time.
    bool IsRead() const { return isRead; }

    /// Whether the broker has nothing of it: somebody has removed it, or it was often looked for.
    bool IsForgotten() const;

    const std::string& Site() const { return topics.Site(); }

    /// Nothing when the broker has none, or is out of reach.
    const std::optional<SiteState>& State() const { return state; }

    /// The site's state, or "unknown".
    const char* StateName() const { return state ? state->KindName() : "unknown"; }

    /// What is known of the device now: of a site that is not ready nothing is.
    const char* StateNameOf(const DeviceRecord& record) const;

    /// How many devices the manifest tells of; nothing without one.
    std::optional<std::size_t> Expected() const;

    /// What is missing, for people: "412 of 1000 received". Empty once everything has been read that the manifest
    /// tells.
    const std::string& Text() const { return text; }

private:
    enum class Phase
    {
        Starting,
        Heads,     // state and manifest are asked for
        Streaming, // all records are coming
        Keeping
    };

    void TakeState(std::string_view bytes);
    void TakeManifest(std::size_t part, std::string_view bytes);
    void TakeRecord(const std::string& id, std::string_view bytes, bool isNewest);
    void TakeEvent(std::string_view bytes, bool isRetained);
    void SetState(std::optional<SiteState> value);
    void SetText(std::string value);
    void Retell();
    void Compare();
    bool IsMissing(const std::string& id) const;
    void Hold(const std::string& id, const DeviceRecord& record);
    void Drop(const std::string& id);
    bool IsToldWhole() const;
    bool HasAll() const;
    bool HasAnswers() const;
    bool HasNearlyAll() const;
    std::string Shortfall() const;
    void Begin(std::string filter, Step::StepKind kind = Step::StepKind::Subscribe);
    std::vector<std::string> Wanted(std::size_t most) const;
    void GiveUpOpen();
    void Settle();

    const SiteTopics topics;
    const ReadingScope scope;
    ReadingListener& listener;
    Phase phase = Phase::Starting;
    Time lastProgress{0};
    Time lastDoubt{0};
    bool hasStreamed = false; // something, since all records were asked for
    bool isSettled = false;   // nothing is open or wanted, until something comes
    bool isRead = false;
    unsigned silences = 0;
    std::vector<Step> steps;
    std::map<std::string, unsigned> attempts; // by topic
    std::set<std::string> open;               // topics that were asked for and have not come
    std::set<std::string> subscribed;         // filters that stay so: what is told there changes

    std::optional<SiteState> state;
    std::string text;
    bool isStateDoubted = true;
    bool isManifestDoubted = true;
    bool isWithdrawn = false; // its state was removed
    unsigned absences = 0;    // of state and manifest, one after the other
    ManifestReader manifest;
    Manifest::Revisions told;                     // by the manifest
    Manifest::Revisions held;                     // passed on to the listener
    std::map<std::string, std::size_t> hostSizes; // of those that are held, in bytes
    std::size_t hostBytes = 0;                    // of all of them
    Manifest::Revisions newer;     // what was told when something newer came: by id, empty if nothing was
    std::set<std::string> missing; // ids
};
} // namespace Zent::Discovery::Fleet
