#include "Inventory/DeviceList.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Inventory
{
std::optional<Device> DeviceList::Add(Device device)
{
    const auto known = std::ranges::find_if(devices, [&device](const Device& each) { return each.IsSameAs(device); });
    if (known == devices.end())
    {
        devices.push_back(std::move(device));
        return std::nullopt;
    }
    return std::exchange(*known, std::move(device));
}

const std::vector<Device>& DeviceList::Devices() const
{
    return devices;
}

const Device* DeviceList::Find(const Device& device) const
{
    const auto found = std::ranges::find_if(devices, [&device](const Device& each) { return each.IsSameAs(device); });
    return found == devices.end() ? nullptr : &*found;
}

void DeviceList::Forget(DeviceMessage::TimePoint byeBefore, std::size_t maximum)
{
    std::erase_if(devices, [byeBefore](const Device& each) {
        return each.Message.Kind == DeviceMessage::MessageKind::Bye && each.Message.Received < byeBefore;
    });
    while (devices.size() > maximum)
    {
        devices.erase(std::ranges::min_element(devices, {}, [](const Device& each) { return each.Message.Received; }));
    }
}
} // namespace Zent::Discovery::Inventory
