#include "Inventory/DeviceColumn.h"

#include <chrono>

namespace Zent::Discovery::Inventory
{
namespace
{
using TimePoint = DeviceColumn::TimePoint;

std::string HostName(const Device& device, TimePoint /*now*/)
{
    return device.HostName;
}

std::string Type(const Device& device, TimePoint /*now*/)
{
    return device.Type;
}

std::string Family(const Device& device, TimePoint /*now*/)
{
    return device.Family;
}

std::string SerialNumber(const Device& device, TimePoint /*now*/)
{
    return device.SerialNumber;
}

std::string MACAddress(const Device& device, TimePoint /*now*/)
{
    return device.MainInterface().MACAddress;
}

std::string IPAddress(const Device& device, TimePoint /*now*/)
{
    return device.MainInterface().IPAddress;
}

std::string Products(const Device& device, TimePoint /*now*/)
{
    std::string text;
    for (const Device::Product& product : device.Products)
    {
        text += (text.empty() ? "" : ", ") + product.Name + " " + product.Version;
    }
    return text;
}

std::string LastMessage(const Device& device, TimePoint /*now*/)
{
    return device.Message.KindName();
}

std::string Age(const Device& device, TimePoint now)
{
    return DeviceColumn::AgeText(now - device.Message.Received);
}

/// Hexadecimal digits are no runs of decimal ones.
bool IsBeforeByMAC(const Device& left, const Device& right)
{
    return left.MainInterface().MACAddress < right.MainInterface().MACAddress;
}

bool IsYounger(const Device& left, const Device& right)
{
    return left.Message.Received > right.Message.Received;
}

constexpr DeviceColumn Columns[] = {
    {"name", &HostName, &DeviceColumn::IsNaturallyBefore<&HostName>},
    {"type", &Type, &DeviceColumn::IsNaturallyBefore<&Type>},
    {"family", &Family, &DeviceColumn::IsNaturallyBefore<&Family>},
    {"serial", &SerialNumber, &DeviceColumn::IsNaturallyBefore<&SerialNumber>},
    {"mac", &MACAddress, &IsBeforeByMAC},
    {"ip", &IPAddress, &DeviceColumn::IsNaturallyBefore<&IPAddress>},
    {"products", &Products, &DeviceColumn::IsNaturallyBefore<&Products>},
    {"message", &LastMessage, &DeviceColumn::IsNaturallyBefore<&LastMessage>},
    {"age", &Age, &IsYounger},
};
} // namespace

std::span<const DeviceColumn> DeviceColumn::All()
{
    return Columns;
}

std::string DeviceColumn::AgeText(TimePoint::duration age)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(age).count();
    if (seconds < 60)
    {
        return std::to_string(seconds < 0 ? 0 : seconds) + " s";
    }
    if (seconds < 3600)
    {
        return std::to_string(seconds / 60) + " min";
    }
    return seconds < 86400 ? std::to_string(seconds / 3600) + " h" : std::to_string(seconds / 86400) + " d";
}
} // namespace Zent::Discovery::Inventory
