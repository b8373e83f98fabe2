#pragma once

#include "Inventory/Conflicts.h"
#include "Inventory/DeviceRow.h"
#include "Inventory/Time.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Zent::Discovery::Inventory
{
class EventQueue;
class Questions;

/// How a table watches over its devices.
struct DeviceTableOptions
{
    std::size_t MaximumDevices = 10000;
    Time AskEvery{10000};                            // all devices; 0 when nobody is asked and silence says nothing
    Time StaleAfter{15000};                          // of silence
    Time AnswerTime{1000};                           // from a question to a silent device to the next one
    unsigned Misses = 8;                             // so many unanswered questions and it is gone
    std::vector<std::string> AcceptedConflicts = {}; // not told, as texts of Conflict::ToString
};

/// The devices of the network and what has become of them. A device is known by the MAC addresses of its interfaces,
/// or by its name and serial number when it has none. One thread at a time.
class DeviceTable final
{
public:
    /// Questions and events must outlive the table.
    DeviceTable(DeviceTableOptions options, Questions& questions, EventQueue& events);
    ~DeviceTable();

    DeviceTable(const DeviceTable&) = delete;
    DeviceTable& operator=(const DeviceTable&) = delete;

    /// Takes a message. The row is valid until the next call of Feed.
    /// @throws std::invalid_argument when it is none of the library's; nothing has changed.
    const DeviceRow& Feed(DeviceMessage message, Time now);

    /// mayAsk is false while somebody else asks all devices.
    void Advance(Time now, bool mayAsk);

    /// Whether another program receives the answers of devices: nobody is gone as long as it does.
    void SetPortHeld(bool isHeld, Time now);

    /// Whether no network interface of this machine takes part: nobody is asked, and so nobody is gone, as long as none
    /// does.
    void SetOffline(bool isOffline, Time now);

    /// There is no route to an address that the table wanted to ask.
    void NoteNoRoute(const std::string& address);

    /// In the order in which the devices were first seen. Valid until the next call of another operation.
    std::vector<const DeviceRow*> Rows() const;

    /// What those devices have said last that have neither left nor gone. Valid likewise.
    std::vector<const Device*> Here() const;

    /// The device with that MAC address in the library's form; null when there is none.
    const DeviceRow* Find(std::string_view address) const;

    /// The row with that number; null when there is none any more.
    const DeviceRow* Find(std::uint64_t id) const;

    std::size_t Size() const;

    /// When to call Advance again, at the latest.
    Time NextTime(Time now) const;

private:
    struct Entry;
    using Entries = std::list<Entry>;
    using State = DeviceRow::RowState;

    Entry& EntryOf(const Device& device, Time now);
    void Learn(Entry& entry, const std::shared_ptr<const Device>& device, Time now);
    void IndexAddresses(Entry& entry, Time now);
    static void NoteChanges(Entry& entry, const std::vector<DeviceDifferences::Difference>& differences, Time now);
    void Forget(Entry& entry, Time now);

    void Raise(Event::EventKind kind,
               const Entry& entry,
               Time now,
               std::vector<DeviceDifferences::Difference> changes = {});
    void BeHere(Entry& entry, bool isNew, std::vector<DeviceDifferences::Difference> changes, Time now);
    void BeAway(Entry& entry, State state, Time now);
    void Turn(Entry& entry, Time now);

    void Arm(Entry& entry, Time when);
    void Disarm(Entry& entry);
    void HandleDue(Entry& entry, Time now);
    void ForgiveSilence(Time now);
    void Miss(Entry& entry, Time now);
    void WaitToAsk(Entry& entry);
    void AskWaiting(Time now);
    bool Ask(Entry& entry, Time now);

    const DeviceTableOptions options;
    Questions& questions;
    EventQueue& events;
    Conflicts conflicts;
    bool isPortHeld = false;
    bool isOffline = false;
    Time nextQuestion{0};
    std::uint64_t lastId = 0;

    Entries entries;                               // the one longest unseen first
    std::unordered_map<std::string, Entry*> byKey; // MAC addresses, or what stands for them
    std::unordered_map<std::uint64_t, Entry*> byId;
    std::multimap<Time, Entry*> due;
    std::deque<std::uint64_t> waiting; // to be asked; some may have answered or be forgotten
    std::unordered_map<std::string, std::uint64_t> askedByIP;
};
} // namespace Zent::Discovery::Inventory
