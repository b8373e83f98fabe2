#pragma once

#include "FaultPlan.h"
#include "system/Net/IPAddress.h"
#include "system/String.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// What a device is to send.
struct Delivery
{
    std::size_t Device;
    std::shared_ptr<const Nfx::System::String> Text;
    Nfx::System::Net::IPAddress Target;
    Treatment How;
    bool IsOnTheWay = false; // when it has left the device, and is held up
};

/// Deliveries in the order of their times, those of the same time in the order of their coming. It has no clock: times
/// are passed in. Main thread only.
class Timetable final
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Drops the delivery when MaximumCount wait already.
    void Add(Time due, const Delivery& delivery);

    /// When the next delivery is due; nothing when there is none.
    std::optional<Time> Next() const;

    /// Takes the delivery whose time is Next. There must be one.
    Delivery Take();

    static constexpr std::size_t MaximumCount = 100000;

private:
    struct Entry
    {
        Time Due;
        std::uint64_t Number;
        Delivery What;

        /// The one that comes later is less: the heap has the largest on top.
        bool operator<(const Entry& other) const { return Due != other.Due ? Due > other.Due : Number > other.Number; }
    };

    std::vector<Entry> heap;
    std::uint64_t added = 0;
};
} // namespace Zent::Discovery::Simulator
