#include "Inventory/DeviceList.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
// Keys in the index: a MAC address, or a name with a line end in front, which no address has. A device without
// interfaces is found by any that has its name, and by the name alone.

std::string NameOf(const Device& device)
{
    return '\n' + device.HostName + '\n' + device.SerialNumber;
}

std::string BareNameOf(const Device& device)
{
    return '\n' + NameOf(device);
}

std::vector<std::string> KeysOf(const Device& device)
{
    std::vector<std::string> keys = {NameOf(device)};
    if (device.Interfaces().empty())
    {
        keys.push_back(BareNameOf(device));
    }
    for (const Device::Interface& interface : device.Interfaces())
    {
        keys.push_back(interface.MACAddress);
    }
    return keys;
}
} // namespace

std::optional<Device> DeviceList::Add(Device device)
{
    const std::optional<std::size_t> known = PlaceOf(device);
    if (!known)
    {
        devices.push_back(std::move(device));
        Enter(devices.size() - 1);
        return std::nullopt;
    }
    Withdraw(*known);
    Device former = std::exchange(devices[*known], std::move(device));
    Enter(*known);
    return former;
}

const std::vector<Device>& DeviceList::Devices() const
{
    return devices;
}

const Device* DeviceList::Find(const Device& device) const
{
    const std::optional<std::size_t> place = PlaceOf(device);
    return place ? &devices[*place] : nullptr;
}

void DeviceList::Forget(DeviceMessage::TimePoint byeBefore, std::size_t maximum)
{
    const std::size_t before = devices.size();
    std::erase_if(devices, [byeBefore](const Device& each) {
        return each.Message.Kind == DeviceMessage::MessageKind::Bye && each.Message.Received < byeBefore;
    });
    while (devices.size() > maximum)
    {
        devices.erase(std::ranges::min_element(devices, {}, [](const Device& each) { return each.Message.Received; }));
    }
    if (devices.size() != before)
    {
        places.clear();
        for (std::size_t place = 0; place < devices.size(); ++place)
        {
            Enter(place);
        }
    }
}

/// Of the same device, as Device::IsSameAs tells.
std::optional<std::size_t> DeviceList::PlaceOf(const Device& device) const
{
    const bool isBare = device.Interfaces().empty();
    auto found = places.find(isBare ? NameOf(device) : device.MainInterface().MACAddress);
    if (found == places.end() && !isBare)
    {
        found = places.find(BareNameOf(device));
    }
    return found == places.end() ? std::nullopt : std::optional(found->second);
}

/// Makes the device be found; those that share something with it and stand before it go before.
void DeviceList::Enter(std::size_t place)
{
    for (std::string& key : KeysOf(devices[place]))
    {
        places.try_emplace(std::move(key), place);
    }
}

void DeviceList::Withdraw(std::size_t place)
{
    for (const std::string& key : KeysOf(devices[place]))
    {
        const auto found = places.find(key);
        if (found != places.end() && found->second == place)
        {
            places.erase(found);
        }
    }
}
} // namespace Zent::Discovery::Inventory
