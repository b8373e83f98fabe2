#pragma once

#include "Inventory/ChangeReport.h"
#include "Inventory/Device.h"
#include "Inventory/DeviceDifferences.h"
#include "Inventory/SearchReport.h"
#include "Inventory/Time.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Two or more devices that cannot all be as they say.
struct Conflict
{
    enum class ConflictKind
    {
        MAC, // one address speaks for two devices in turn
        IP,  // one address on two devices
        Name // one name on several devices
    };

    ConflictKind Kind;
    std::string Value;                   // the address or name
    std::size_t Count;                   // of the devices
    std::shared_ptr<const Device> First; // two of them
    std::shared_ptr<const Device> Second;

    /// As it stands in the list of accepted ones: mac:02:00:00:00:00:01, ip:10.0.0.5, name:press-4.
    std::string ToString() const;

    /// @throws std::invalid_argument when no conflict stands there like that.
    static void CheckText(std::string_view text);
};

/// Something that a session has to tell.
struct Event
{
    enum class EventKind
    {
        Appeared,     // a device was heard for the first time
        Changed,      // it tells something else than before
        Left,         // it said Bye
        Gone,         // it answers no more
        Returned,     // it was heard again after it had left or gone
        Flapping,     // it comes and goes: the three above are not told any more
        Settled,      // it no longer comes and goes
        Forgotten,    // its row is part of another one now, or gave way to it in a table that is full
        Conflict,     // devices contradict each other
        PortHeld,     // another program receives the answers: no device is told to be gone
        PortReleased, // no longer
        Offline,      // no network interface of this machine takes part: no device is told to be gone
        Online,       // one does again
        RoundEnded,   // of the search
        SearchEnded,
        ChangeEnded
    };

    EventKind Kind;
    Time When;
    std::shared_ptr<const Device> Subject = {};              // the device as it is now; null when it is about none
    std::uint64_t Row = 0;                                   // of the device in the table; 0 when it is about no row
    std::vector<DeviceDifferences::Difference> Changes = {}; // of Changed and Returned
    std::optional<Conflict> Contradiction = {};
    std::optional<SearchReport> Report = {};
    std::optional<ChangeReport> Outcome = {}; // of a change

    const char* KindName() const;

    /// {"Event":"Changed","When":1500,"Device":{"Host":...},"Changes":[{"Property":..,"Before":..,"After":..}]}; a
    /// conflict has "Conflict":{"Kind":"ip","Value":"10.0.0.5","Count":2,"First":{..},"Second":{..}}, an event of the
    /// search "Search" with its report, that of a change its "Id", "Change" with its report, and
    /// the request to "Undo" it.
    std::string ToJson() const;
};
} // namespace Zent::Discovery::Inventory
