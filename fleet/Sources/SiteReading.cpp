#include "Fleet/SiteReading.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace Zent::Discovery::Fleet
{
SiteReading::SiteReading(std::string site, ReadingScope scope)
    : topics(std::move(site))
    , scope(scope)
{
}

void SiteReading::Take(const Topic& topic, std::string_view bytes, Time now)
{
    using Kind = Topic::TopicKind;
    if (IsOver())
    {
        return;
    }
    const std::string name = topic.Kind == Kind::State      ? topics.State()
                             : topic.Kind == Kind::Device   ? topics.Device(topic.Device)
                             : topic.Kind != Kind::Manifest ? ""
                             : topic.Part == 0              ? topics.Manifest()
                                                            : topics.ManifestPart(topic.Part);
    const bool wasAsked = open.contains(name);
    if (wasAsked)
    {
        lastProgress = now;
        Close(name);
    }
    try
    {
        if (topic.Kind == Kind::State)
        {
            TakeState(bytes);
        }
        else if (topic.Kind == Kind::Manifest)
        {
            TakeManifest(topic.Part, bytes);
        }
        else if (topic.Kind == Kind::Device)
        {
            TakeRecord(topic.Device, bytes, wasAsked, now);
        }
    }
    catch (const std::invalid_argument&) // nobody has promised anything of the bytes: it counts as not received
    {
    }
}

std::vector<ReadingRequest> SiteReading::Advance(Time now)
{
    if (phase == Phase::Starting)
    {
        phase = Phase::OneByOne;
        lastProgress = now;
        Ask(topics.State());
        Ask(topics.Manifest());
        if (scope == ReadingScope::Devices)
        {
            phase = Phase::Together;
            requests.push_back({topics.AllDevices()});
        }
    }
    const bool isSilent = !IsOver() && now >= NextTime();
    if (phase == Phase::Together && (isSilent || HasAll()))
    {
        phase = Phase::OneByOne;
        lastProgress = now;
        requests.push_back({topics.AllDevices(), true});
    }
    else if (isSilent)
    {
        lastProgress = now;
        GiveUpOpen();
    }
    for (const std::string& topic : Wanted())
    {
        Ask(topic);
    }
    if (phase == Phase::OneByOne && open.empty())
    {
        End();
    }
    return std::exchange(requests, {});
}

SiteReading::Time SiteReading::NextTime() const
{
    return IsOver() ? Time::max()
                    : lastProgress + (phase == Phase::Together && !records.empty() ? PauseTime : AnswerTime);
}

const char* SiteReading::StateNameOf(const DeviceRecord& record) const
{
    return state && state->Kind == SiteState::StateKind::Ready ? record.StateName() : "unknown";
}

std::optional<std::size_t> SiteReading::Expected() const
{
    return manifest.HasHead() ? std::optional(manifest.Devices()) : std::nullopt;
}

std::string SiteReading::Shortfall() const
{
    if (!manifest.HasHead())
    {
        return "site " + Site() + ": no manifest, so that nobody knows how many devices it has";
    }
    return HasAll() ? ""
                    : "site " + Site() + ": " + std::to_string(Received()) + " of " +
                          std::to_string(manifest.Devices()) + " received";
}

void SiteReading::TakeState(std::string_view bytes)
{
    state = bytes.empty() ? std::nullopt : std::optional(SiteState::Parse(bytes));
}

void SiteReading::TakeManifest(std::size_t part, std::string_view bytes)
{
    manifest.Take(part, bytes);
    told = manifest.Known();
    Compare();
}

void SiteReading::TakeRecord(const std::string& id, std::string_view bytes, bool wasAsked, Time now)
{
    if (bytes.empty())
    {
        records.erase(id);
        Compare();
        return;
    }
    DeviceRecord record = DeviceRecord::Parse(bytes);
    if (wasAsked)
    {
        current.insert(id);
    }
    const auto expected = told.find(id);
    if (current.contains(id) || (expected != told.end() && expected->second == record.Revision()))
    {
        missing.erase(id);
    }
    lastProgress = records.contains(id) ? lastProgress : now; // those that change all the time must not hold it up
    records.insert_or_assign(id, std::move(record));
}

/// A record that the broker gave for its topic alone is the newest that there is, and the manifest comes after it; of
/// those that came together with others a newer one may have been dropped.
void SiteReading::Compare()
{
    missing.clear();
    for (const auto& [id, revision] : told)
    {
        const auto held = records.find(id);
        if (held == records.end() || (held->second.Revision() != revision && !current.contains(id)))
        {
            missing.insert(missing.end(), id);
        }
    }
}

bool SiteReading::HasAll() const
{
    return scope == ReadingScope::Summary ? manifest.HasHead() : manifest.Whole().has_value() && missing.empty();
}

/// Topics to ask for now.
std::vector<std::string> SiteReading::Wanted() const
{
    std::vector<std::string> wanted;
    const auto add = [this, &wanted](std::string topic) {
        const auto found = attempts.find(topic);
        if (!open.contains(topic) && (found == attempts.end() || found->second < MaximumAttempts))
        {
            wanted.push_back(std::move(topic));
        }
        return open.size() + wanted.size() < MaximumAsked;
    };
    if (IsOver() || (!state && !add(topics.State())) || (!manifest.HasHead() && !add(topics.Manifest())))
    {
        return wanted;
    }
    if (scope == ReadingScope::Summary)
    {
        return wanted;
    }
    const std::vector<std::size_t> parts = manifest.MissingParts();
    if (std::ranges::all_of(parts, [&](std::size_t part) { return add(topics.ManifestPart(part)); }) &&
        phase == Phase::OneByOne)
    {
        std::ignore = std::ranges::all_of(missing, [&](const std::string& id) { return add(topics.Device(id)); });
    }
    return wanted;
}

void SiteReading::Ask(const std::string& topic)
{
    ++attempts[topic];
    open.insert(topic);
    requests.push_back({topic});
}

void SiteReading::Close(const std::string& topic)
{
    open.erase(topic);
    if (topic.starts_with(topics.Device("")))
    {
        requests.push_back({topic, true});
    }
    else
    {
        kept.insert(topic);
    }
}

void SiteReading::GiveUpOpen()
{
    for (const std::string& topic : std::exchange(open, {}))
    {
        requests.push_back({topic, true});
    }
}

void SiteReading::End()
{
    phase = Phase::Over;
    for (const std::string& topic : kept)
    {
        requests.push_back({topic, true});
    }
    if (manifest.Whole())
    {
        std::erase_if(records, [this](const auto& each) { return !told.contains(each.first); });
    }
}
} // namespace Zent::Discovery::Fleet
