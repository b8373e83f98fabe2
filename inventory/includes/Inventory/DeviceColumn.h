#pragma once

#include "Inventory/Column.h"
#include "Inventory/Device.h"

#include <span>
#include <string>

namespace Zent::Discovery::Inventory
{
/// One of the columns of devices.
struct DeviceColumn : Column<Device>
{
    /// All columns from left to right.
    static std::span<const DeviceColumn> All();

    /// How long ago something was, in one unit: 59 s, 59 min, 23 h, 400 d. What is still to come is 0 s ago.
    static std::string AgeText(TimePoint::duration age);
};
} // namespace Zent::Discovery::Inventory
