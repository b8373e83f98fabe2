#include "Fleet/SiteReading.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
std::string TopicOf(const SiteTopics& topics, const Topic& topic)
{
    switch (topic.Kind)
    {
    case Topic::TopicKind::State:
        return topics.State();
    case Topic::TopicKind::Manifest:
        return topic.Part == 0 ? topics.Manifest() : topics.ManifestPart(topic.Part);
    case Topic::TopicKind::Device:
        return topics.Device(topic.Device);
    default:
        return "";
    }
}

/// The revision, or an empty text when there is none.
std::string RevisionOf(const Manifest::Revisions& revisions, const std::string& id)
{
    const auto found = revisions.find(id);
    return found == revisions.end() ? "" : found->second;
}
} // namespace

SiteReading::SiteReading(std::string site, ReadingScope scope, ReadingListener& listener)
    : topics(std::move(site))
    , scope(scope)
    , listener(listener)
{
}

void SiteReading::Take(const Topic& topic, std::string_view bytes, bool isRetained, Time now)
{
    isSettled = false;
    const bool isAnswer = open.erase(TopicOf(topics, topic)) > 0;
    if (isAnswer || (phase == Phase::Streaming && isRetained))
    {
        lastProgress = now;
    }
    switch (topic.Kind)
    {
    case Topic::TopicKind::State:
        TakeState(bytes);
        break;
    case Topic::TopicKind::Manifest:
        TakeManifest(topic.Part, bytes);
        break;
    case Topic::TopicKind::Device:
        hasStreamed = hasStreamed || isRetained;
        if (isAnswer)
        {
            steps.push_back({Step::StepKind::Unsubscribe, topics.Device(topic.Device)});
        }
        TakeRecord(topic.Device, bytes, isAnswer || !isRetained);
        break;
    case Topic::TopicKind::Events:
        TakeEvent(bytes, isRetained);
        break;
    case Topic::TopicKind::Commands:
    case Topic::TopicKind::Reply:
        break;
    }
}

std::vector<Conversation::Step> SiteReading::Conclude(Time now)
{
    const bool isSilent = now >= NextTime();
    if (phase == Phase::Streaming && (isSilent || HasAll()))
    {
        phase = Phase::Keeping;
        lastProgress = now;
        Compare();
    }
    else if (isSilent && !open.empty())
    {
        lastProgress = now;
        GiveUpOpen();
    }
    if (HasAnswers())
    {
        Settle();
    }
    if (isSettled && now >= NextTime())
    {
        lastDoubt = now;
        Doubt();
    }
    return std::exchange(steps, {});
}

std::vector<Conversation::Step> SiteReading::Advance(Time now, const ReadingAllowance& allowance)
{
    if (phase == Phase::Starting)
    {
        phase = Phase::Heads;
        lastDoubt = now;
        text = "not read yet";
        listener.TakeSite(*this);
    }
    if (phase == Phase::Heads && HasAnswers() && (allowance.IsStream || HasNearlyAll()))
    {
        phase = HasNearlyAll() ? Phase::Keeping : Phase::Streaming;
        hasStreamed = false;
        lastProgress = now;
        Begin(topics.AllDevices(), HasNearlyAll() ? Step::StepKind::Follow : Step::StepKind::Subscribe);
        if (scope == ReadingScope::Events)
        {
            Begin(topics.Events());
        }
    }
    for (const std::string& topic : Wanted(allowance.Questions))
    {
        lastProgress = open.empty() ? now : lastProgress;
        ++attempts[topic];
        open.insert(topic);
        Begin(topic);
    }
    return std::exchange(steps, {});
}

SiteReading::Time SiteReading::NextTime() const
{
    if (phase == Phase::Streaming)
    {
        return lastProgress + (hasStreamed ? PauseTime : AnswerTime);
    }
    return !open.empty() ? lastProgress + AnswerTime
           : isSettled   ? lastDoubt + (text.empty() ? CheckInterval : RetryInterval)
                         : Time::max();
}

void SiteReading::Doubt()
{
    isSettled = false;
    isStateDoubted = true;
    isManifestDoubted = true;
    silences = 0;
    attempts.clear();
    newer.clear();
}

void SiteReading::Disconnect()
{
    Doubt();
    phase = Phase::Starting;
    absences = 0;
    open.clear();
    subscribed.clear();
    steps.clear();
    state.reset();
    text = "no connection to the broker";
    listener.TakeSite(*this);
}

std::vector<Conversation::Step> SiteReading::End()
{
    std::vector<Step> ends;
    for (const std::string& filter : subscribed)
    {
        ends.push_back({Step::StepKind::Unsubscribe, filter});
    }
    return ends;
}

bool SiteReading::IsForgotten() const
{
    return !state && !manifest.HasHead() && (isWithdrawn || absences >= MaximumAbsences);
}

const char* SiteReading::StateNameOf(const DeviceRecord& record) const
{
    return state && state->Kind == SiteState::StateKind::Ready ? record.StateName() : "unknown";
}

std::optional<std::size_t> SiteReading::Expected() const
{
    return manifest.HasHead() ? std::optional(manifest.Devices()) : std::nullopt;
}

void SiteReading::TakeState(std::string_view bytes)
{
    SetState(bytes.empty() ? std::nullopt : std::optional(SiteState::Parse(bytes)));
    isStateDoubted = false;
    isWithdrawn = bytes.empty();
    absences = 0;
}

void SiteReading::TakeManifest(std::size_t part, std::string_view bytes)
{
    manifest.Take(part, bytes);
    if (part == 0)
    {
        isManifestDoubted = false;
        absences = 0;
        std::erase_if(attempts, [this](const auto& each) { return each.first.starts_with(topics.Manifest() + "/"); });
    }
    Retell();
}

void SiteReading::TakeRecord(const std::string& id, std::string_view bytes, bool isNewest)
{
    if (bytes.empty())
    {
        Drop(id);
    }
    else
    {
        Hold(id, DeviceRecord::Parse(bytes));
    }
    newer.erase(id);
    if (isNewest && (held.contains(id) || told.contains(id)))
    {
        newer.emplace(id, RevisionOf(told, id));
    }
    missing.erase(id);
    if (IsMissing(id))
    {
        missing.insert(id);
    }
}

void SiteReading::TakeEvent(std::string_view bytes, bool isRetained)
{
    const SiteEvent event = SiteEvent::Parse(bytes);
    if (isRetained || event.Site != Site())
    {
        throw std::invalid_argument("an event of another time or site");
    }
    listener.TakeEvent(event);
}

void SiteReading::SetState(std::optional<SiteState> value)
{
    const bool isNews = state != value;
    state = std::move(value);
    if (isNews && phase != Phase::Starting) // it is told when it starts
    {
        listener.TakeSite(*this);
    }
}

void SiteReading::SetText(std::string value)
{
    if (text != value)
    {
        text = std::move(value);
        listener.TakeSite(*this);
    }
}

/// What the manifest tells has changed: of a record that is told in another revision it does not matter any more how
/// often it was asked for.
void SiteReading::Retell()
{
    Manifest::Revisions next = manifest.Known();
    const Manifest::Difference news = Manifest::Compare(next, told);
    for (const auto* const ids : {&news.Missing, &news.Stale})
    {
        for (const std::string& id : *ids)
        {
            attempts.erase(topics.Device(id));
        }
    }
    told = std::move(next);
    std::erase_if(newer, [this](const auto& each) { return each.second != RevisionOf(told, each.first); });
    Compare();
}

void SiteReading::Compare()
{
    const Manifest::Difference difference = Manifest::Compare(told, held);
    missing.clear();
    for (const auto* const ids : {&difference.Missing, &difference.Stale})
    {
        std::ranges::copy_if(*ids, std::inserter(missing, missing.end()),
                             [this](const std::string& id) { return IsMissing(id); });
    }
    for (const std::string& id : IsToldWhole() ? difference.Extra : std::vector<std::string>())
    {
        if (!newer.contains(id))
        {
            Drop(id);
        }
    }
}

/// A record that has just changed, or that the broker gave for its topic alone, is the newest that there is, and the
/// manifest comes after it; of those that came together with others a newer one may have been dropped.
bool SiteReading::IsMissing(const std::string& id) const
{
    const auto expected = told.find(id);
    const auto known = held.find(id);
    const auto seen = newer.find(id);
    return expected != told.end() && (known == held.end() || known->second != expected->second) &&
           (seen == newer.end() || seen->second != expected->second);
}

void SiteReading::Hold(const std::string& id, const DeviceRecord& record)
{
    const auto known = held.find(id);
    if (known != held.end() && known->second == record.Revision())
    {
        return;
    }
    if (known == held.end() && held.size() >= MaximumDevices)
    {
        throw std::invalid_argument("more than " + std::to_string(MaximumDevices) + " devices");
    }
    const std::size_t before = known == held.end() ? 0 : hostSizes.at(id);
    const std::size_t bytes = hostBytes - before + record.Host().size();
    if (bytes > MaximumHostBytes)
    {
        throw std::invalid_argument("hosts of more than " + std::to_string(MaximumHostBytes) + " bytes");
    }
    hostBytes = bytes;
    hostSizes.insert_or_assign(id, record.Host().size());
    held.insert_or_assign(id, record.Revision());
    listener.TakeRecord(Site(), id, record);
}

void SiteReading::Drop(const std::string& id)
{
    if (held.erase(id) > 0)
    {
        const auto size = hostSizes.find(id);
        hostBytes -= size->second;
        hostSizes.erase(size);
        listener.TakeRemoval(Site(), id);
    }
}

bool SiteReading::IsToldWhole() const
{
    return manifest.HasHead() && manifest.MissingParts().empty() && told.size() == manifest.Devices();
}

bool SiteReading::HasAll() const
{
    return scope == ReadingScope::Summary ? manifest.HasHead() : IsToldWhole() && missing.empty();
}

/// Whether everything has come that was asked for, and nothing more is to be asked for.
bool SiteReading::HasAnswers() const
{
    return !isSettled && phase != Phase::Starting && phase != Phase::Streaming && open.empty() && Wanted(1).empty();
}

/// Whether so little is new since an earlier connection that it is asked for alone, which takes more of the broker for
/// each record than to have all of them come.
bool SiteReading::HasNearlyAll() const
{
    return !held.empty() && IsToldWhole() && missing.size() <= told.size() / 4;
}

std::string SiteReading::Shortfall() const
{
    if (!manifest.HasHead())
    {
        return "no manifest, so that nobody knows how many devices it has";
    }
    return HasAll() ? ""
                    : std::to_string(told.size() - missing.size()) + " of " + std::to_string(manifest.Devices()) +
                          " received";
}

void SiteReading::Begin(std::string filter, Step::StepKind kind)
{
    if (!filter.starts_with(topics.Device("")) || filter == topics.AllDevices())
    {
        subscribed.insert(filter);
    }
    steps.push_back({kind, std::move(filter)});
}

/// Topics to ask for now.
std::vector<std::string> SiteReading::Wanted(std::size_t most) const
{
    std::vector<std::string> wanted;
    const auto add = [&](std::string topic) {
        const auto found = attempts.find(topic);
        if (!open.contains(topic) && (found == attempts.end() || found->second < MaximumAttempts))
        {
            wanted.push_back(std::move(topic));
        }
        return wanted.size() < most;
    };
    if (isSettled || most == 0 || (isStateDoubted && !add(topics.State())) ||
        (isManifestDoubted && !add(topics.Manifest())) || scope == ReadingScope::Summary)
    {
        return wanted;
    }
    const std::vector<std::size_t> parts = manifest.MissingParts();
    if (std::ranges::all_of(parts, [&](std::size_t part) { return add(topics.ManifestPart(part)); }) &&
        phase == Phase::Keeping)
    {
        std::ignore = std::ranges::all_of(missing, [&](const std::string& id) { return add(topics.Device(id)); });
    }
    return wanted;
}

void SiteReading::GiveUpOpen()
{
    ++silences;
    for (const std::string& topic : std::exchange(open, {}))
    {
        if (!subscribed.contains(topic))
        {
            steps.push_back({Step::StepKind::Unsubscribe, topic});
        }
    }
}

/// What has not come is not there.
void SiteReading::Settle()
{
    if (isStateDoubted && isManifestDoubted)
    {
        ++absences;
    }
    if (std::exchange(isStateDoubted, false))
    {
        SetState(std::nullopt);
    }
    if (std::exchange(isManifestDoubted, false))
    {
        manifest = {};
        Retell();
    }
    if (phase == Phase::Heads && scope == ReadingScope::Summary)
    {
        phase = Phase::Keeping;
    }
    if (phase == Phase::Keeping)
    {
        isSettled = true;
        isRead = true;
        SetText(Shortfall());
    }
}
} // namespace Zent::Discovery::Fleet
