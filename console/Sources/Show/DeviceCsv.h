#pragma once

#include "Inventory/Device.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Devices as rows of comma-separated values: all columns of the table, nothing cut, with the time of the message in
/// the place of its age.
class DeviceCsv final
{
public:
    DeviceCsv() = delete;

    /// The titles of the columns.
    static std::vector<std::string> Titles();

    /// What stands below them, as the device sent it.
    static std::vector<std::string> Cells(const Inventory::Device& device);
};
} // namespace Zent::Discovery::Console
