#include "Page/PageModel.h"

#include "PrometheusText.h"

#include <nlohmann/json.hpp>

#include <charconv>

using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::SiteEvent;
using Zent::Discovery::Fleet::UtcTime;
using Zent::Discovery::Fleet::WallTime;
using Json = nlohmann::json;

namespace Zent::Discovery::Page
{
namespace
{
/// Details that are longer are not shown: each device keeps those of its latest change and conflict. A conflict is
/// between a few devices, so that a longer one tells of none.
constexpr std::size_t MaximumDetails = 4096;

std::string Dumped(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Quoted(const std::string& text)
{
    return Dumped(Json(text));
}

/// Without the host, which is in the device's record.
std::string Shown(const SiteEvent& event, Json details)
{
    details.erase("Host");
    std::string text = Dumped(details);
    text = text.size() > MaximumDetails ? "{}" : text;
    return R"({"Time":")" + UtcTime::ToText(event.When) + R"(","Details":)" + text + "}";
}

/// The member of a host that a conflict such as "ip:10.0.0.5" is over, as it stands there; empty when it is over what a
/// device always has.
std::string MatterOf(const std::string& conflict)
{
    const std::string value = conflict.substr(conflict.find(':') + 1);
    return conflict.starts_with("ip:")     ? R"("IPAddress":)" + Quoted(value)
           : conflict.starts_with("name:") ? R"("HostName":)" + Quoted(value)
                                           : "";
}

/// Whether the device has what a conflict is over.
bool Holds(const DeviceRecord& record, const std::string& matter)
{
    return record.Host().find(matter) != std::string::npos;
}

std::string ServerSentEvent(const char* kind, const std::string& id, const std::string& data)
{
    return std::string("event: ") + kind + "\nid: " + id + "\ndata: " + data + "\n\n";
}
} // namespace

PageModel::PageModel(std::string run)
    : run(std::move(run))
{
}

void PageModel::SetSite(const std::string& site, const std::string& state, const std::string& text)
{
    const bool wasReady = IsReady(site);
    Site& each = sites[site];
    if (each.Changed != 0 && each.State == state && each.Text == text)
    {
        return;
    }
    each.State = state;
    each.Text = text;
    each.Changed = Touch({site, ""}, each.Changed);
    if (wasReady != IsReady(site))
    {
        TouchDevicesOf(site);
    }
}

void PageModel::RemoveSite(const std::string& site)
{
    auto each = devices.lower_bound({site, ""});
    while (each != devices.end() && each->first.first == site)
    {
        NoteRemoved(each->first, each->second.Changed);
        each = devices.erase(each);
    }
    if (const auto found = sites.find(site); found != sites.end())
    {
        NoteRemoved({site, ""}, found->second.Changed);
        sites.erase(found);
    }
}

void PageModel::SetDevice(const std::string& site, const std::string& id, const DeviceRecord& record)
{
    const Key key(site, id);
    Device& device = devices[key];
    device.Record = record;
    device.Changed = Touch(key, device.Changed);
    if (!device.LastConflict.empty() && (record.IsAway() || !Holds(record, device.ConflictOver)))
    {
        device.LastConflict.clear();
        EndConflictOfOne(site, std::exchange(device.ConflictOver, ""));
    }
}

void PageModel::RemoveDevice(const std::string& site, const std::string& id)
{
    if (const auto found = devices.find({site, id}); found != devices.end())
    {
        const std::string over = found->second.ConflictOver;
        NoteRemoved(found->first, found->second.Changed);
        devices.erase(found);
        EndConflictOfOne(site, over);
    }
}

void PageModel::Take(const SiteEvent& event)
{
    ++eventCounts[event.Kind];
    if (event.Kind == "changed")
    {
        TakeChange(event);
    }
    else if (event.Kind == "conflict")
    {
        TakeConflict(event);
    }
}

void PageModel::TakeChange(const SiteEvent& event)
{
    const Key key(event.Site, event.Device);
    const Json details = Json::parse(event.Details, nullptr, false);
    if (const auto found = devices.find(key); found != devices.end() && details.is_object())
    {
        found->second.LastChange = Shown(event, details);
        found->second.Changed = Touch(key, found->second.Changed);
    }
}

void PageModel::TakeConflict(const SiteEvent& event)
{
    const Json details = event.Details.size() > MaximumDetails ? Json() : Json::parse(event.Details, nullptr, false);
    if (!details.is_object() || !details.contains("Devices") || !details["Devices"].is_array())
    {
        return;
    }
    const Json conflict = details.value("Conflict", Json());
    for (const Json& id : details["Devices"])
    {
        const Key key(event.Site, id.is_string() ? id.get<std::string>() : "");
        if (const auto found = devices.find(key); found != devices.end())
        {
            Device& device = found->second;
            device.LastConflict = Shown(event, details);
            device.ConflictOver = conflict.is_string() ? MatterOf(conflict.get<std::string>()) : "";
            device.Changed = Touch(key, device.Changed);
        }
    }
}

/// A device that is the only one left with what a conflict was over is in none any more.
void PageModel::EndConflictOfOne(const std::string& site, const std::string& over)
{
    if (over.empty())
    {
        return;
    }
    std::vector<std::pair<const Key, Device>*> holders;
    for (auto each = devices.lower_bound({site, ""}); each != devices.end() && each->first.first == site; ++each)
    {
        const DeviceRecord& record = *each->second.Record;
        if (!record.IsAway() && Holds(record, over))
        {
            holders.push_back(&*each);
        }
    }
    if (holders.size() == 1 && holders.front()->second.ConflictOver == over)
    {
        auto& [key, device] = *holders.front();
        device.LastConflict.clear();
        device.ConflictOver.clear();
        device.Changed = Touch(key, device.Changed);
    }
}

void PageModel::SetHealth(const std::string& problem, Time now)
{
    this->problem = problem;
    healthTold = now;
}

std::string PageModel::Problem(Time now) const
{
    return healthTold && now - *healthTold > HealthLasts ? "the thread that does the work does not go on" : problem;
}

std::optional<PageModel::Position> PageModel::Find(std::string_view eventId) const
{
    if (!eventId.starts_with(run + "-"))
    {
        return std::nullopt;
    }
    const char* const end = eventId.data() + eventId.size();
    Position position = 0;
    const auto [last, error] = std::from_chars(eventId.data() + run.size() + 1, end, position);
    const bool isNumber = error == std::errc() && last == end;
    return isNumber && position >= forgotten && position <= newest ? std::optional(position) : std::nullopt;
}

std::string PageModel::EventsAfter(Position& position, std::size_t bytes) const
{
    if (position < forgotten)
    {
        position = newest;
        return ResetEvent();
    }
    std::string text;
    for (auto each = changes.upper_bound(position); each != changes.end() && text.size() < bytes; ++each)
    {
        text += EventOf(each->first, each->second);
        position = each->first;
    }
    return text;
}

std::string PageModel::ResetEvent() const
{
    return ServerSentEvent("reset", EventId(newest), "{}");
}

std::string PageModel::EventOf(Position position, const Key& key) const
{
    const std::string id = EventId(position);
    const auto& [site, device] = key;
    const bool isSite = device.empty();
    if (removed.contains(key))
    {
        const std::string which = R"({"Site":)" + Quoted(site);
        return ServerSentEvent(isSite ? "removed-site" : "removed", id,
                               which + (isSite ? "}" : R"(,"Device":)" + Quoted(device) + "}"));
    }
    return ServerSentEvent(isSite ? "site" : "device", id,
                           isSite ? ElementOf(site, sites.at(site)) : ElementOf(key, devices.at(key)));
}

std::string PageModel::NextPiece(Snapshot& snapshot, std::size_t bytes, WallTime now) const
{
    using Part = Snapshot::SnapshotPart;
    std::string text;
    if (snapshot.Part == Part::Head)
    {
        text = R"({"Event":")" + EventId(newest) + R"(","Now":")" + UtcTime::ToText(now) + R"(","Sites":[)";
        snapshot.Part = Part::Sites;
    }
    const auto append = [&text, &snapshot](const std::string& element) {
        text += snapshot.IsFirst ? "" : ",";
        text += element;
        snapshot.IsFirst = false;
    };
    if (snapshot.Part == Part::Sites)
    {
        auto each = sites.upper_bound(snapshot.Last.first);
        for (; each != sites.end() && text.size() < bytes; ++each)
        {
            append(ElementOf(each->first, each->second));
            snapshot.Last.first = each->first;
        }
        if (each == sites.end())
        {
            text += R"(],"Devices":[)";
            snapshot = {Part::Devices};
        }
    }
    if (snapshot.Part == Part::Devices)
    {
        auto each = devices.upper_bound(snapshot.Last);
        for (; each != devices.end() && text.size() < bytes; ++each)
        {
            append(ElementOf(each->first, each->second));
            snapshot.Last = each->first;
        }
        if (each == devices.end())
        {
            text += "]}\n";
            snapshot.Part = Part::End;
        }
    }
    return text;
}

std::string PageModel::MetricsText() const
{
    std::map<std::string, std::uint64_t> states;
    for (const char* const each : {"present", "gone", "left", "flapping", "unknown"})
    {
        states[each] = 0;
    }
    for (const auto& [key, device] : devices)
    {
        ++states[StateNameOf(key.first, device)];
    }
    std::map<std::string, std::uint64_t> events;
    for (const char* const each : {"appeared", "changed", "left", "gone", "returned", "conflict"})
    {
        const auto found = eventCounts.find(each);
        events[each] = found == eventCounts.end() ? 0 : found->second;
    }
    PrometheusText text;
    text.Add(
        {"discovery_sites", "Sites that are shown.", Metric::MetricKind::Gauge, static_cast<double>(sites.size())});
    for (const auto& [state, count] : states)
    {
        text.Add({"discovery_devices", "Devices by what has become of them.", Metric::MetricKind::Gauge,
                  static_cast<double>(count), Metric::Label("state", state)});
    }
    for (const auto& [kind, count] : events)
    {
        text.Add({"discovery_events_total", "What has happened to devices since the start.",
                  Metric::MetricKind::Counter, static_cast<double>(count), Metric::Label("kind", kind)});
    }
    for (const Metric& each : metrics)
    {
        text.Add(each);
    }
    return text.Take();
}

bool PageModel::IsReady(const std::string& site) const
{
    const auto found = sites.find(site);
    return found != sites.end() && found->second.State == "ready";
}

const char* PageModel::StateNameOf(const std::string& site, const Device& device) const
{
    return IsReady(site) ? device.Record->StateName() : "unknown";
}

std::string PageModel::ElementOf(const std::string& site, const Site& each) const
{
    return R"({"Site":)" + Quoted(site) + R"(,"State":)" + Quoted(each.State) + R"(,"Text":)" + Quoted(each.Text) + "}";
}

std::string PageModel::ElementOf(const Key& key, const Device& each) const
{
    return R"({"Site":)" + Quoted(key.first) + R"(,"Device":)" + Quoted(key.second) + R"(,"State":")" +
           StateNameOf(key.first, each) + R"(","Since":")" + UtcTime::ToText(each.Record->Since()) + '"' +
           (each.LastChange.empty() ? "" : R"(,"Changed":)" + each.LastChange) +
           (each.LastConflict.empty() ? "" : R"(,"Conflict":)" + each.LastConflict) + R"(,"Host":)" +
           each.Record->Host() + "}";
}

/// Gives the place of a change that has just happened.
PageModel::Position PageModel::Touch(const Key& key, Position before)
{
    changes.erase(before);
    if (const auto found = removed.find(key); found != removed.end())
    {
        changes.erase(found->second);
        removals.erase(found->second);
        removed.erase(found);
    }
    changes.emplace(++newest, key);
    return newest;
}

void PageModel::NoteRemoved(const Key& key, Position before)
{
    const Position position = Touch(key, before);
    removed.emplace(key, position);
    removals.insert(position);
    if (removals.size() > MaximumRemoved)
    {
        forgotten = *removals.begin();
        removals.erase(removals.begin());
        const auto oldest = changes.find(forgotten);
        removed.erase(oldest->second);
        changes.erase(oldest);
    }
}

void PageModel::TouchDevicesOf(const std::string& site)
{
    for (auto each = devices.lower_bound({site, ""}); each != devices.end() && each->first.first == site; ++each)
    {
        each->second.Changed = Touch(each->first, each->second.Changed);
    }
}
} // namespace Zent::Discovery::Page
