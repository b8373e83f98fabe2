#pragma once

#include "Inventory/Device.h"

#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What one message of a device tells about its host otherwise than another. All texts are as the device sent them.
class DeviceDifferences final
{
public:
    struct Difference
    {
        std::string Property;              // such as HostName or NICs[02:00:00:00:00:01].IPAddress
        std::optional<std::string> Before; // nothing when it was not there
        std::optional<std::string> After;

        /// For people: HostName: press-1 -> press-2.
        std::string ToString() const;

        /// {"Property":"HostName","Before":"press-1","After":"press-2"}; what was not there is left out.
        std::string ToJson() const;
    };

    DeviceDifferences() = delete;

    /// In the order of the members; empty when both tell the same.
    static std::vector<Difference> Between(const Device& before, const Device& after);
};
} // namespace Zent::Discovery::Inventory
