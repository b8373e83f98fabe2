#pragma once

#include "DeviceColumn.h"
#include "Wildcard.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Which devices the user wants to see, and in which order.
class DeviceSelection final
{
public:
    /// Adds a condition: COLUMN=PATTERN or COLUMN!=PATTERN.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddFilter(const std::string& text);

    /// Adds an order for devices that are alike in those added before: COLUMN or, for the reverse, COLUMN:desc.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddOrder(const std::string& text);

    /// Whether the device meets all conditions. Patterns are held against what a table without limits shows.
    bool Accepts(const Device& device, DeviceColumn::TimePoint now = DeviceMessage::Clock::now()) const;

    /// The accepted ones of the devices in the wanted order, as far as there is one. They must outlive the result.
    std::vector<const Device*> Of(const std::vector<Device>& devices) const;

private:
    struct Filter
    {
        const DeviceColumn* Column;
        Wildcard Pattern;
        bool Wanted; // that the pattern matches
    };

    struct Order
    {
        const DeviceColumn* Column;
        bool Descending;
    };

    bool IsBefore(const Device& left, const Device& right) const;

    std::vector<Filter> filters;
    std::vector<Order> orders;
};
} // namespace Zent::Discovery::Console
