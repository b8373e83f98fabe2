#pragma once

#include "Inventory/DeviceColumn.h"
#include "Inventory/Wildcard.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Which devices the user wants to see, and in which order.
class DeviceSelection final
{
public:
    /// How the text of a column is shown.
    using Show = std::string (*)(std::string_view text);

    /// Patterns are held against what show makes of a text, or against the text as the device sent it without one.
    /// The first columns stand in front of those that all devices have, and must outlive the selection. They are given
    /// the very devices that it is asked about: of a class derived from Device they may show what that one adds.
    explicit DeviceSelection(Show show = nullptr, std::span<const DeviceColumn> first = {});

    /// All names, for a message to the user.
    std::string ColumnNames() const;

    /// Adds a condition: COLUMN=PATTERN or COLUMN!=PATTERN.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddFilter(const std::string& text);

    /// Adds an order for devices that are alike in those added before: COLUMN or, for the reverse, COLUMN:desc.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddOrder(const std::string& text);

    /// Whether the device meets all conditions; ages count up to now.
    bool Accepts(const Device& device, DeviceColumn::TimePoint now) const;

    /// The accepted ones of the devices in the wanted order, as far as there is one. They must outlive the result.
    std::vector<const Device*> Of(const std::vector<Device>& devices, DeviceColumn::TimePoint now) const;
    std::vector<const Device*> Of(std::vector<const Device*> devices, DeviceColumn::TimePoint now) const;

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

    const DeviceColumn* ColumnNamed(const std::string& name) const;
    bool IsBefore(const Device& left, const Device& right) const;

    Show show;
    std::span<const DeviceColumn> first;
    std::vector<Filter> filters;
    std::vector<Order> orders;
};
} // namespace Zent::Discovery::Inventory
