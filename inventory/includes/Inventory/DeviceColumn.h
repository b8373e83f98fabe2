#pragma once

#include "Inventory/Device.h"
#include "Inventory/NaturalOrder.h"

#include <span>
#include <string>
#include <string_view>

namespace Zent::Discovery::Inventory
{
/// One of the columns in which devices are shown, and by which they are sorted and filtered.
struct DeviceColumn
{
    using TimePoint = DeviceMessage::TimePoint;

    const char* Name; // as users write it

    /// As the device sent it, unfit for a terminal. Ages count up to now.
    std::string (*Text)(const Device& device, TimePoint now);

    bool (*IsBefore)(const Device& left, const Device& right);

    /// The order of texts as people expect it, for IsBefore.
    template <std::string (*TextOf)(const Device& device, TimePoint now)>
    static bool IsNaturallyBefore(const Device& left, const Device& right)
    {
        return NaturalOrder::IsBefore(TextOf(left, {}), TextOf(right, {}));
    }

    /// All columns from left to right.
    static std::span<const DeviceColumn> All();

    /// Null when no column has that name.
    static const DeviceColumn* Find(std::string_view name);

    /// How long ago something was, in one unit: 59 s, 59 min, 23 h, 400 d. What is still to come is 0 s ago.
    static std::string AgeText(TimePoint::duration age);

    /// All names but one, for a message to the user.
    static std::string Names(std::string_view without = {});
};
} // namespace Zent::Discovery::Inventory
