#pragma once

#include "Device.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// One of the columns in which devices are shown, and by which they are sorted and filtered.
struct DeviceColumn
{
    using TimePoint = DeviceMessage::Clock::time_point;

    const char* Name;  // as users write it
    const char* Title; // above the column
    std::size_t UsualWidth;
    std::size_t MaximumWidth; // a device with endless texts must not break the table of the others
    int LeftOutAs;            // where a terminal is narrow: the first, the second; 0 when it always stays

    /// As the device sent it, unfit for a terminal. Ages count up to now.
    std::string (*Text)(const Device& device, TimePoint now);

    bool (*IsBefore)(const Device& left, const Device& right);

    /// All columns from left to right.
    static std::span<const DeviceColumn> All();

    /// Null when no column has that name.
    static const DeviceColumn* Find(std::string_view name);

    /// All names, for a message to the user.
    static std::string Names();
};
} // namespace Zent::Discovery::Console
