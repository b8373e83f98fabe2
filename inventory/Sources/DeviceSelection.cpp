#include "Inventory/DeviceSelection.h"

namespace Zent::Discovery::Inventory
{
namespace
{
std::vector<DeviceColumn> WithAll(std::span<const DeviceColumn> first)
{
    std::vector<DeviceColumn> columns(first.begin(), first.end());
    columns.insert(columns.end(), DeviceColumn::All().begin(), DeviceColumn::All().end());
    return columns;
}
} // namespace

DeviceSelection::DeviceSelection(Show show, std::span<const DeviceColumn> first)
    : Selection(show, WithAll(first))
{
}
} // namespace Zent::Discovery::Inventory
