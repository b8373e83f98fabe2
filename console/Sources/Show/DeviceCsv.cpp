#include "Show/DeviceCsv.h"

#include "Inventory/DeviceColumn.h"
#include "Programs/TimeText.h"

#include <string_view>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceColumn;
using Zent::Discovery::Programs::TimeText;

namespace Zent::Discovery::Console
{
namespace
{
bool IsAge(const DeviceColumn& column)
{
    return std::string_view(column.Name) == "age"; // which is true at one moment only
}

std::string TimeOf(const Device& device)
{
    return device.Message.Received == DeviceColumn::TimePoint() ? "" : TimeText::Utc(device.Message.Received);
}
} // namespace

std::vector<std::string> DeviceCsv::Titles()
{
    std::vector<std::string> titles;
    for (const DeviceColumn& column : DeviceColumn::All())
    {
        titles.emplace_back(IsAge(column) ? "time" : column.Name);
    }
    return titles;
}

std::vector<std::string> DeviceCsv::Cells(const Device& device)
{
    std::vector<std::string> cells;
    for (const DeviceColumn& column : DeviceColumn::All())
    {
        cells.push_back(IsAge(column) ? TimeOf(device) : column.Text(device, {}));
    }
    return cells;
}
} // namespace Zent::Discovery::Console
