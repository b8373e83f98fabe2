#pragma once

#include "Inventory/DeviceColumn.h"
#include "Inventory/Selection.h"

#include <span>

namespace Zent::Discovery::Inventory
{
/// Which devices the user wants to see, and in which order.
class DeviceSelection final : public Selection<DeviceColumn>
{
public:
    /// The first columns stand in front of those that all devices have. They are given the very devices that the
    /// selection is asked about: of a class derived from Device they may show what that one adds.
    explicit DeviceSelection(Show show = nullptr, std::span<const DeviceColumn> first = {});
};
} // namespace Zent::Discovery::Inventory
