#pragma once

#include "Device.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// The devices seen so far, one row each, in the order of their first message.
class DeviceTable final
{
public:
    /// Adds the device, or puts the newer knowledge in the place of the older.
    void Add(Device device);

    const std::vector<Device>& Devices() const;

    /// Prints titles and rows, with columns as wide as they need to be.
    void Print(std::ostream& out) const;

    /// One row for the device in columns of usual width, for rows that appear one by one.
    static std::string Row(const Device& device);

    /// The titles above such rows.
    static std::string Titles();

private:
    std::vector<Device> devices;
};
} // namespace Zent::Discovery::Console
