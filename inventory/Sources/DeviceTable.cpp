#include "Inventory/DeviceTable.h"

#include "Inventory/EventQueue.h"
#include "Inventory/Network.h"
#include "Inventory/Questions.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
using Differences = std::vector<DeviceDifferences::Difference>;
using Kind = Event::EventKind;

constexpr Time FlappingTime{600000}; // within which a device that comes and goes does so
constexpr std::size_t FlappingReturns = 3;
constexpr std::size_t MaximumAskedByIP = 1024; // many more than may be unanswered

/// Whether it is an address of one device. Devices without one say 0.0.0.0.
bool CanBeAsked(const std::string& text)
{
    constexpr IPv4 FirstOfNetworks = 0x01000000;
    constexpr IPv4 FirstOfGroups = 0xE0000000;
    const std::optional<IPv4> address = Network::ParseAddress(text);
    return address && *address >= FirstOfNetworks && *address < FirstOfGroups;
}

/// What tells a device from others: the addresses of its interfaces, the sending one first.
std::vector<std::string> KeysOf(const Device& device)
{
    std::vector<std::string> keys;
    std::unordered_set<std::string_view> known;
    for (const Device::Interface& interface : device.Interfaces())
    {
        if (interface.HasMACAddress() && known.insert(interface.MACAddress).second)
        {
            keys.push_back(interface.MACAddress);
        }
    }
    if (keys.empty())
    {
        keys.push_back(device.HostName + '\n' + device.SerialNumber); // no MAC address has a line end
    }
    return keys;
}
} // namespace

/// A row and what the table has to do for it.
struct DeviceTable::Entry : DeviceRow
{
    Entries::iterator Place;
    std::vector<std::string> Keys; // those in the index that lead here
    std::optional<std::multimap<Time, Entry*>::iterator> Due;
    unsigned Misses = 0;
    bool IsWaiting = false;
    bool HasRoute = true; // as far as is known
    std::deque<Time> Returns;
    Time LastTurn{0}; // when it last came or went
};

DeviceTable::DeviceTable(DeviceTableOptions options, Questions& questions, EventQueue& events)
    : options(std::move(options))
    , questions(questions)
    , events(events)
    , conflicts(this->options.AcceptedConflicts, events)
{
}

DeviceTable::~DeviceTable() = default;

const DeviceRow& DeviceTable::Feed(DeviceMessage message, Time now)
{
    const auto device = std::make_shared<const Device>(std::move(message));
    Entry& entry = EntryOf(*device, now);
    Learn(entry, device, now);
    return entry;
}

DeviceTable::Entry& DeviceTable::EntryOf(const Device& device, Time now)
{
    for (const std::string& key : KeysOf(device))
    {
        const auto found = byKey.find(key);
        if (found != byKey.end())
        {
            return *found->second;
        }
    }
    if (entries.size() >= options.MaximumDevices)
    {
        Forget(entries.front(), now);
    }
    Entry& entry = entries.emplace_back();
    entry.Place = std::prev(entries.end());
    entry.Id = ++lastId;
    entry.FirstSeen = now;
    byId.emplace(entry.Id, &entry);
    return entry;
}

void DeviceTable::Learn(Entry& entry, const std::shared_ptr<const Device>& device, Time now)
{
    const bool isNew = entry.Latest == nullptr;
    Differences differences = isNew ? Differences{} : DeviceDifferences::Between(*entry.Latest, *device);
    entry.Latest = device;
    entry.LastSeen = now;
    entry.Source = device->MainInterface().MACAddress;
    entry.Misses = 0;
    entry.IsWaiting = false;
    entry.HasRoute = true;
    entries.splice(entries.end(), entries, entry.Place);
    questions.NoteAnswer(*device);
    if (isNew || !differences.empty())
    {
        IndexAddresses(entry, now);
        NoteChanges(entry, differences, now);
    }
    if (device->Message.Kind == DeviceMessage::MessageKind::Bye)
    {
        BeAway(entry, State::Left, now);
        return;
    }
    BeHere(entry, isNew, std::move(differences), now);
    conflicts.Heard(entry.Id, device, now);
}

/// Makes all addresses of the device lead to it. Two rows that turn out to be interfaces of one device become one.
void DeviceTable::IndexAddresses(Entry& entry, Time now)
{
    for (const std::string& key : entry.Keys)
    {
        byKey.erase(key);
    }
    entry.Keys.clear();
    for (const std::string& key : KeysOf(*entry.Latest))
    {
        const auto other = byKey.find(key);
        if (other != byKey.end())
        {
            if (entry.Latest->SerialNumber.empty() || other->second->Latest->SerialNumber != entry.Latest->SerialNumber)
            {
                continue; // an adapter that moved from one device to another, or somebody lies
            }
            Forget(*other->second, now);
        }
        byKey.emplace(key, &entry);
        entry.Keys.push_back(key);
    }
}

/// Keeps what differs from what the device said first.
void DeviceTable::NoteChanges(Entry& entry, const Differences& differences, Time now)
{
    for (const DeviceDifferences::Difference& difference : differences)
    {
        const auto known = std::ranges::find(entry.Changes, difference.Property,
                                             [](const DeviceRow::Change& each) { return each.What.Property; });
        if (known == entry.Changes.end())
        {
            entry.Changes.push_back({difference, now});
        }
        else if (known->What.Before == difference.After)
        {
            entry.Changes.erase(known);
        }
        else
        {
            known->What.After = difference.After;
            known->When = now;
        }
    }
    if (entry.Changes.size() > DeviceRow::MaximumChanges)
    {
        entry.Changes.erase(entry.Changes.begin(),
                            entry.Changes.end() - static_cast<std::ptrdiff_t>(DeviceRow::MaximumChanges));
    }
}

void DeviceTable::Forget(Entry& entry, Time now)
{
    Raise(Kind::Forgotten, entry, now);
    Disarm(entry);
    conflicts.Remove(entry.Id);
    for (const std::string& key : entry.Keys)
    {
        byKey.erase(key);
    }
    byId.erase(entry.Id);
    entries.erase(entry.Place);
}

void DeviceTable::Raise(Kind kind, const Entry& entry, Time now, Differences changes)
{
    events.Raise({.Kind = kind, .When = now, .Subject = entry.Latest, .Row = entry.Id, .Changes = std::move(changes)});
}

void DeviceTable::BeHere(Entry& entry, bool isNew, Differences changes, Time now)
{
    const bool hasReturned = !isNew && !entry.IsHere();
    entry.Condition = State::Present;
    if (entry.Due == std::nullopt)
    {
        Arm(entry, now + options.StaleAfter);
    }
    if (isNew)
    {
        Raise(Kind::Appeared, entry, now);
        return;
    }
    if (hasReturned)
    {
        Turn(entry, now);
    }
    if (hasReturned && !entry.IsFlapping)
    {
        Raise(Kind::Returned, entry, now, std::move(changes));
    }
    else if (!changes.empty())
    {
        Raise(Kind::Changed, entry, now, std::move(changes));
    }
}

void DeviceTable::BeAway(Entry& entry, State state, Time now)
{
    const bool isNews = entry.Condition != state && (state == State::Left || entry.IsHere());
    entry.Condition = state;
    entry.IsWaiting = false;
    conflicts.Remove(entry.Id);
    Disarm(entry);
    if (entry.IsFlapping)
    {
        entry.LastTurn = now;
        Arm(entry, now + FlappingTime);
    }
    else if (isNews)
    {
        Raise(state == State::Left ? Kind::Left : Kind::Gone, entry, now);
    }
}

/// A device has come back.
void DeviceTable::Turn(Entry& entry, Time now)
{
    entry.LastTurn = now;
    entry.Returns.push_back(now);
    while (entry.Returns.front() + FlappingTime < now)
    {
        entry.Returns.pop_front();
    }
    if (entry.Returns.size() >= FlappingReturns && !std::exchange(entry.IsFlapping, true))
    {
        Raise(Kind::Flapping, entry, now);
    }
    if (entry.Returns.size() > FlappingReturns)
    {
        entry.Returns.pop_front();
    }
}

void DeviceTable::Arm(Entry& entry, Time when)
{
    Disarm(entry);
    entry.Due = due.emplace(when, &entry);
}

void DeviceTable::Disarm(Entry& entry)
{
    if (entry.Due)
    {
        due.erase(*std::exchange(entry.Due, std::nullopt));
    }
}

void DeviceTable::Advance(Time now, bool mayAsk)
{
    if (mayAsk && options.AskEvery > Time{0} && now >= nextQuestion)
    {
        nextQuestion = now + options.AskEvery;
        if (!isOffline)
        {
            questions.AskAll();
        }
    }
    while (!due.empty() && due.begin()->first <= now)
    {
        Entry& entry = *due.begin()->second;
        Disarm(entry);
        HandleDue(entry, now);
    }
    if (mayAsk && !isOffline)
    {
        AskWaiting(now);
    }
    conflicts.Advance(now);
}

void DeviceTable::HandleDue(Entry& entry, Time now)
{
    if (entry.IsFlapping && now >= entry.LastTurn + FlappingTime)
    {
        entry.IsFlapping = false;
        entry.Returns.clear();
        Raise(Kind::Settled, entry, now);
    }
    switch (entry.Condition)
    {
    case State::Present:
        if (now < entry.LastSeen + options.StaleAfter)
        {
            Arm(entry, entry.LastSeen + options.StaleAfter);
        }
        else if (options.AskEvery > Time{0})
        {
            entry.Condition = State::Stale;
            WaitToAsk(entry);
        }
        break;
    case State::Stale:
        WaitToAsk(entry);
        break;
    case State::Asked:
        Miss(entry, now);
        break;
    default:
        break;
    }
}

/// A question was not answered.
void DeviceTable::Miss(Entry& entry, Time now)
{
    ++entry.Misses;
    if (entry.Misses < options.Misses)
    {
        WaitToAsk(entry);
    }
    else if (!isPortHeld)
    {
        BeAway(entry, State::Gone, now);
    }
    else
    {
        // Whoever holds the port has the answers; asking goes on, slowly.
        entry.Condition = State::Stale;
        Arm(entry, now + options.AskEvery);
    }
}

void DeviceTable::WaitToAsk(Entry& entry)
{
    if (!std::exchange(entry.IsWaiting, true))
    {
        waiting.push_back(entry.Id);
    }
}

void DeviceTable::AskWaiting(Time now)
{
    while (!waiting.empty())
    {
        const auto found = byId.find(waiting.front());
        if (found != byId.end() && found->second->IsWaiting && !Ask(*found->second, now))
        {
            return;
        }
        waiting.pop_front();
    }
}

/// Asks by MAC and by IP address in turn, as far as the device has both and they may be asked now. False when nothing
/// may be asked now.
bool DeviceTable::Ask(Entry& entry, Time now)
{
    const Device::Interface& interface = entry.Latest->MainInterface();
    const bool hasIP = entry.HasRoute && CanBeAsked(interface.IPAddress);
    const bool wantsIP = hasIP && (entry.Misses % 2 == 1 || !interface.HasMACAddress());
    if (wantsIP && questions.CanAskIP(now))
    {
        questions.AskIP(interface.IPAddress, now);
        if (askedByIP.size() >= MaximumAskedByIP)
        {
            askedByIP.clear();
        }
        askedByIP.insert_or_assign(interface.IPAddress, entry.Id);
    }
    else if (interface.HasMACAddress() && questions.CanAskMAC(now))
    {
        questions.AskMAC(interface.MACAddress, now);
    }
    else if (hasIP || interface.HasMACAddress())
    {
        return false;
    }
    entry.IsWaiting = false;
    entry.Condition = State::Asked;
    Arm(entry, now + options.AnswerTime);
    return true;
}

void DeviceTable::NoteNoRoute(const std::string& address)
{
    const auto asked = askedByIP.find(address);
    if (asked == askedByIP.end())
    {
        return;
    }
    const auto found = byId.find(asked->second);
    askedByIP.erase(asked);
    if (found != byId.end() && found->second->Condition == State::Asked)
    {
        Entry& entry = *found->second;
        entry.HasRoute = false;
        Disarm(entry); // no question, no miss
        WaitToAsk(entry);
    }
}

void DeviceTable::SetPortHeld(bool isHeld, Time now)
{
    if (std::exchange(isPortHeld, isHeld) == isHeld)
    {
        return;
    }
    events.Raise({.Kind = isHeld ? Kind::PortHeld : Kind::PortReleased, .When = now});
    ForgiveSilence(now);
}

void DeviceTable::SetOffline(bool isOff, Time now)
{
    if (std::exchange(isOffline, isOff) == isOff)
    {
        return;
    }
    events.Raise({.Kind = isOff ? Kind::Offline : Kind::Online, .When = now});
    ForgiveSilence(now);
}

/// Nobody could be heard, or nobody can from now on: devices that are here have all their time again.
void DeviceTable::ForgiveSilence(Time now)
{
    for (Entry& entry : entries)
    {
        if (entry.IsHere())
        {
            entry.Misses = 0;
            entry.IsWaiting = false;
            entry.Condition = entry.Condition == State::Asked ? State::Stale : entry.Condition;
            Arm(entry, now + options.StaleAfter);
        }
    }
}

std::vector<const DeviceRow*> DeviceTable::Rows() const
{
    std::vector<const DeviceRow*> rows;
    rows.reserve(entries.size());
    for (const Entry& entry : entries)
    {
        rows.push_back(&entry);
    }
    std::ranges::sort(rows, {}, &DeviceRow::Id);
    return rows;
}

std::vector<const Device*> DeviceTable::Here() const
{
    std::vector<const Device*> here;
    for (const DeviceRow* const row : Rows())
    {
        if (row->IsHere())
        {
            here.push_back(row->Latest.get());
        }
    }
    return here;
}

const DeviceRow* DeviceTable::Find(std::string_view address) const
{
    const auto found = byKey.find(std::string(address));
    return found == byKey.end() ? nullptr : found->second;
}

const DeviceRow* DeviceTable::Find(std::uint64_t id) const
{
    const auto found = byId.find(id);
    return found == byId.end() ? nullptr : found->second;
}

std::size_t DeviceTable::Size() const
{
    return entries.size();
}

Time DeviceTable::NextTime(Time now) const
{
    Time next = options.AskEvery > Time{0} ? nextQuestion : Time::max();
    next = due.empty() ? next : std::min(next, due.begin()->first);
    next = waiting.empty() || isOffline ? next : std::min(next, questions.NextTime(now));
    return std::max(now, next);
}
} // namespace Zent::Discovery::Inventory
