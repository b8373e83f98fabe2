#pragma once

#include "Inventory/Device.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
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
    std::optional<std::size_t> PlaceOf(const Device& device) const;
    void Enter(std::size_t place);
    void Withdraw(std::size_t place);

    std::vector<Device> devices;
    std::unordered_map<std::string, std::size_t> places; // of devices by what they are known by
};
} // namespace Zent::Discovery::Inventory
