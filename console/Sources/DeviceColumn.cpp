#include "DeviceColumn.h"

#include "NaturalOrder.h"
#include "TimeText.h"

#include <algorithm>

namespace Zent::Discovery::Console
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
    return TimeText::Age(now - device.Message.Received);
}

template <std::string (*Text)(const Device&, TimePoint)>
bool IsNaturallyBefore(const Device& left, const Device& right)
{
    return NaturalOrder::IsBefore(Text(left, {}), Text(right, {}));
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
    {"name", "HOST NAME", 16, 40, 0, &HostName, &IsNaturallyBefore<&HostName>},
    {"type", "TYPE", 10, 24, 4, &Type, &IsNaturallyBefore<&Type>},
    {"family", "FAMILY", 8, 24, 2, &Family, &IsNaturallyBefore<&Family>},
    {"serial", "SERIAL", 10, 24, 3, &SerialNumber, &IsNaturallyBefore<&SerialNumber>},
    {"mac", "MAC", 17, 17, 5, &MACAddress, &IsBeforeByMAC},
    {"ip", "IP", 15, 15, 0, &IPAddress, &IsNaturallyBefore<&IPAddress>},
    {"products", "PRODUCTS", 30, 80, 1, &Products, &IsNaturallyBefore<&Products>},
    {"message", "LAST MESSAGE", 12, 12, 0, &LastMessage, &IsNaturallyBefore<&LastMessage>},
    {"age", "AGE", 6, 8, 0, &Age, &IsYounger},
};
} // namespace

std::span<const DeviceColumn> DeviceColumn::All()
{
    return Columns;
}

const DeviceColumn* DeviceColumn::Find(std::string_view name)
{
    const auto* const found =
        std::ranges::find(Columns, name, [](const DeviceColumn& each) { return std::string_view(each.Name); });
    return found == std::end(Columns) ? nullptr : found;
}

std::string DeviceColumn::Names()
{
    std::string names;
    for (const DeviceColumn& column : Columns)
    {
        names += (names.empty() ? "" : &column == std::end(Columns) - 1 ? " and " : ", ") + std::string(column.Name);
    }
    return names;
}
} // namespace Zent::Discovery::Console
