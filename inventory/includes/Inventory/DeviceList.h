#pragma once

#include "Inventory/Device.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// The devices heard of so far, in the order of their first message.
class DeviceList final
{
public:
    /// Adds the device, or puts the newer knowledge in the place of the older, which is returned.
    std::optional<Device> Add(Device device);

    const std::vector<Device>& Devices() const;

    /// Null when it is not there.
    const Device* Find(const Device& device) const;

    /// Forgets devices that said Bye before that time, and as many of those heard of least recently as are more than
    /// maximum.
    void Forget(DeviceMessage::TimePoint byeBefore, std::size_t maximum);

private:
    std::vector<Device> devices;
};
} // namespace Zent::Discovery::Inventory
