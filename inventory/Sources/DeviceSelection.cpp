#include "Inventory/DeviceSelection.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Inventory
{
DeviceSelection::DeviceSelection(Show show, std::span<const DeviceColumn> first)
    : show(show)
    , first(first)
{
}

std::string DeviceSelection::ColumnNames() const
{
    std::string names;
    for (const DeviceColumn& column : first)
    {
        names += std::string(column.Name) + ", ";
    }
    return names + DeviceColumn::Names();
}

void DeviceSelection::AddFilter(const std::string& text)
{
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
    {
        throw std::invalid_argument('"' + text + "\" is not COLUMN=PATTERN or COLUMN!=PATTERN, such as name=press*");
    }
    const bool isNegated = sign > 0 && text[sign - 1] == '!';
    filters.push_back(
        {ColumnNamed(text.substr(0, isNegated ? sign - 1 : sign)), Wildcard(text.substr(sign + 1)), !isNegated});
}

void DeviceSelection::AddOrder(const std::string& text)
{
    const std::size_t colon = text.find(':');
    const std::string direction = colon == std::string::npos ? "asc" : text.substr(colon + 1);
    if (direction != "asc" && direction != "desc")
    {
        throw std::invalid_argument('"' + direction + "\" is not a direction; it is asc or desc, such as name:desc");
    }
    orders.push_back({ColumnNamed(text.substr(0, colon)), direction == "desc"});
}

bool DeviceSelection::Accepts(const Device& device, DeviceColumn::TimePoint now) const
{
    return std::ranges::all_of(filters, [this, &device, now](const Filter& each) {
        const std::string text = each.Column->Text(device, now);
        return each.Pattern.Matches(show == nullptr ? text : show(text)) == each.Wanted;
    });
}

std::vector<const Device*> DeviceSelection::Of(const std::vector<Device>& devices, DeviceColumn::TimePoint now) const
{
    std::vector<const Device*> all;
    all.reserve(devices.size());
    for (const Device& device : devices)
    {
        all.push_back(&device);
    }
    return Of(std::move(all), now);
}

std::vector<const Device*> DeviceSelection::Of(std::vector<const Device*> devices, DeviceColumn::TimePoint now) const
{
    std::erase_if(devices, [this, now](const Device* each) { return !Accepts(*each, now); });
    if (!orders.empty())
    {
        std::ranges::stable_sort(devices,
                                 [this](const Device* left, const Device* right) { return IsBefore(*left, *right); });
    }
    return devices;
}

const DeviceColumn* DeviceSelection::ColumnNamed(const std::string& name) const
{
    const auto found = std::ranges::find(first, name, &DeviceColumn::Name);
    const DeviceColumn* const column = found == first.end() ? DeviceColumn::Find(name) : &*found;
    if (column == nullptr)
    {
        throw std::invalid_argument('"' + name + "\" is not a column; the columns are " + ColumnNames());
    }
    return column;
}

bool DeviceSelection::IsBefore(const Device& left, const Device& right) const
{
    for (const Order& order : orders)
    {
        const Device& first = order.Descending ? right : left;
        const Device& second = order.Descending ? left : right;
        if (order.Column->IsBefore(first, second))
        {
            return true;
        }
        if (order.Column->IsBefore(second, first))
        {
            return false;
        }
    }
    return false;
}
} // namespace Zent::Discovery::Inventory
