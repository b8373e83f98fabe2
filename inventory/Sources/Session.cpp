#include "Inventory/Session.h"

#include "JsonText.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
constexpr std::size_t TypicalRow = 1536; // bytes of JSON
} // namespace

Session::Session(DeviceTableOptions options)
    : devices(std::move(options), questions, events)
{
}

void Session::Feed(DeviceMessage message, Time time)
{
    GoOn(time);
    const DeviceMessage::MessageKind kind = message.Kind;
    const DeviceRow& row = devices.Feed(std::move(message), now);
    if (search && kind == DeviceMessage::MessageKind::Signature)
    {
        search->Heard(row.Id, *row.Latest, now);
    }
    else if (search && kind == DeviceMessage::MessageKind::Bye)
    {
        search->Forget(row.Id);
    }
    for (Change& change : changes)
    {
        change.Heard(row.Latest, now);
    }
    TellOfSearch();
    TellOfChanges();
}

void Session::Advance(Time time)
{
    GoOn(time);
    if (search)
    {
        search->Advance(now);
    }
    AdvanceChanges();
    devices.Advance(now, !IsSearching());
    TellOfSearch();
}

std::optional<Event> Session::NextEvent()
{
    return events.Next();
}

std::optional<Wish> Session::NextWish()
{
    return questions.Next();
}

void Session::Answer(std::int64_t id, std::int64_t value)
{
    const std::optional<Wish> wish = questions.Answer(id, value);
    if (!wish)
    {
        return;
    }
    if (std::ranges::any_of(changes, [&](Change& change) { return change.Answered(id, value, now); }))
    {
        TellOfChanges();
        return;
    }
    if (wish->Kind == Wish::WishKind::CountLost && search)
    {
        search->Counted(value < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(value)), now);
    }
    else if (wish->Kind == Wish::WishKind::IsReachable && value != 1)
    {
        devices.NoteNoRoute(wish->Address);
        if (search)
        {
            search->NoteNoRoute();
        }
    }
    TellOfSearch();
}

void Session::SetPortHeld(bool isHeld, Time time)
{
    GoOn(time);
    devices.SetPortHeld(isHeld, now);
}

void Session::SetOffline(bool isOffline, Time time)
{
    GoOn(time);
    devices.SetOffline(isOffline, now);
}

void Session::StartSearch(SearchOptions options, Time time)
{
    GoOn(time);
    Search::Check(options);
    StopSearch(now);
    search.emplace(std::move(options), questions, now);
    roundsTold = 0;
    isEndTold = false;
}

void Session::StopSearch(Time time)
{
    GoOn(time);
    if (search)
    {
        search->Stop(now);
        TellOfSearch();
    }
}

const SearchReport* Session::SearchState() const
{
    return search ? &search->Report() : nullptr;
}

std::optional<ChangeRefusal> Session::CheckChange(const ChangeRequest& request, const ChangeOptions& options) const
{
    return ChangeChecks::Find(request.Normal(), options, devices, RequestsUnderWay());
}

std::int64_t Session::StartChange(const ChangeRequest& request, ChangeOptions options, Time time)
{
    GoOn(time);
    ChangeRequest normal = request.Normal();
    std::optional<ChangeRefusal> refusal = ChangeChecks::FindInValues(normal, options);
    if (options.Look && !refusal && !IsSearching())
    {
        StartSearch(*options.Look, now);
    }
    Change& change = changes.emplace_back(++lastChange, std::move(normal), std::move(options), devices, questions, now);
    if (refusal)
    {
        change.Decide(std::move(refusal), now);
    }
    AdvanceChanges();
    return lastChange;
}

void Session::StopChange(std::int64_t id, Time time)
{
    GoOn(time);
    for (Change& change : changes)
    {
        if (change.Report().Id == id)
        {
            change.Stop(now);
        }
    }
    TellOfChanges();
}

void Session::FailChange(std::int64_t id, const std::string& reason)
{
    for (Change& change : changes)
    {
        if (change.Report().Id == id)
        {
            change.Fail(reason, now);
        }
    }
    TellOfChanges();
}

const ChangeReport* Session::ChangeState(std::int64_t id) const
{
    const auto found = std::ranges::find(changes, id, [](const Change& change) { return change.Report().Id; });
    return found == changes.end() ? nullptr : &found->Report();
}

const DeviceTable& Session::Devices() const
{
    return devices;
}

Time Session::NextTime() const
{
    Time next = IsSearching() ? search->NextTime(now) : devices.NextTime(now);
    for (const Change& change : changes)
    {
        next = change.IsReady(IsSearching(), now) ? now : std::min(next, change.NextTime(now));
    }
    return next;
}

std::string Session::ToJson() const
{
    JsonText json(devices.Size() * TypicalRow);
    json.Number("Now", now.count()).Number("LostEvents", static_cast<std::int64_t>(events.Lost()));
    json.Array("Devices", devices.Rows(), [](const DeviceRow* row) { return row->ToJson(); });
    return json.Raw("Search", search ? search->Report().ToJson() : "null").Take();
}

void Session::GoOn(Time time)
{
    now = std::max(now, time);
}

void Session::TellOfSearch()
{
    if (!search)
    {
        return;
    }
    const SearchReport& report = search->Report();
    const std::size_t ended = report.Rounds.size() - (report.IsOver || report.Rounds.empty() ? 0 : 1);
    for (; roundsTold < ended; ++roundsTold)
    {
        events.Raise({.Kind = Event::EventKind::RoundEnded, .When = now, .Report = report});
    }
    if (report.IsOver && !std::exchange(isEndTold, true))
    {
        events.Raise({.Kind = Event::EventKind::SearchEnded, .When = now, .Report = report});
    }
}

void Session::TellOfChanges()
{
    for (const Change& change : changes)
    {
        if (change.IsOver())
        {
            events.Raise({.Kind = Event::EventKind::ChangeEnded, .When = now, .Outcome = change.Report()});
        }
    }
    changes.remove_if([](const Change& change) { return change.IsOver(); });
}

void Session::AdvanceChanges()
{
    for (Change& change : changes)
    {
        if (change.IsReady(IsSearching(), now))
        {
            const ChangeRequest& request = change.Report().Request;
            change.Decide(ChangeChecks::Find(request, change.Options(), devices, RequestsUnderWay()), now);
        }
        change.Advance(now);
    }
    TellOfChanges();
}

/// What devices are told and do not show yet.
std::vector<ChangeRequest> Session::RequestsUnderWay() const
{
    std::vector<ChangeRequest> requests;
    for (const Change& change : changes)
    {
        if (change.IsUnderWay())
        {
            requests.push_back(change.Report().Request);
        }
    }
    return requests;
}

bool Session::IsSearching() const
{
    return search && !search->IsOver();
}
} // namespace Zent::Discovery::Inventory
