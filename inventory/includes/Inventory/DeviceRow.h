#pragma once

#include "Inventory/Device.h"
#include "Inventory/DeviceDifferences.h"
#include "Inventory/Time.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What a table knows of a device.
struct DeviceRow
{
    enum class RowState
    {
        Present,
        Stale,   // silent for a while; is going to be asked
        Asked,   // and has not answered yet
        Gone,    // has answered none of several questions
        Left,    // has said Bye
        Flapping // comes and goes
    };

    struct Change
    {
        DeviceDifferences::Difference What;
        Time When; // last
    };

    static constexpr std::size_t MaximumChanges = 32;

    std::uint64_t Id = 0;                 // never given twice by a table
    std::shared_ptr<const Device> Latest; // what it said last
    Time FirstSeen{0};
    Time LastSeen{0};
    std::string Source;          // MAC address of the interface that it was last heard from
    std::vector<Change> Changes; // since it was first seen; those longest ago are left out beyond MaximumChanges
    RowState Condition = RowState::Present; // never Flapping
    bool IsFlapping = false;

    RowState State() const;
    const char* StateName() const;

    /// Whether it is neither gone nor has left.
    bool IsHere() const;

    /// {"State":"present","Here":true,"FirstSeen":0,"LastSeen":1500,"Source":"00:..","Changes":[{"When":..,
    /// "Property":..,...}],"Device":{"Host":..}}
    std::string ToJson() const;
};
} // namespace Zent::Discovery::Inventory
