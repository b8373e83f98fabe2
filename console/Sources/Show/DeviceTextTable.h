#pragma once

#include "Inventory/Device.h"
#include "Inventory/DeviceColumn.h"
#include "Text/Style.h"
#include "Text/TextTable.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Devices as rows of a table.
class DeviceTextTable final
{
public:
    /// Devices as they are, without the age of what they said.
    static DeviceTextTable Snapshot();

    /// Devices behind their states, with the age of their last messages at the moment now.
    static DeviceTextTable WithStates(Inventory::DeviceColumn::TimePoint now);

    /// Rows that appear one by one, below the times at which their messages came.
    static DeviceTextTable Stream();

    /// Devices that differ between two results, behind what has become of them.
    static DeviceTextTable Changes();

    /// Devices of several sites behind those and their states, with the age of these at the moment now.
    static DeviceTextTable OfSites(Inventory::DeviceColumn::TimePoint now);

    /// first stands in front of the device's columns, in the tables that have such columns.
    void Add(const Inventory::Device& device, Style style = Style::Plain, const std::string& first = "");
    void Add(const Inventory::Device& device, Style style, std::vector<std::string> first);

    void AddNote(const std::string& text);

    std::vector<std::string> Lines(const Colours& colours, std::size_t limit = TextTable::NoLimit) const;

private:
    using Columns = std::vector<const Inventory::DeviceColumn*>;

    static Columns Without(const std::vector<std::string>& names);

    DeviceTextTable(const std::vector<const char*>& firstTitles,
                    Columns columns,
                    bool hasUsualWidths,
                    Inventory::DeviceColumn::TimePoint now);

    const bool hasFirst; // columns in front of the device's
    const Columns columns;
    const Inventory::DeviceColumn::TimePoint now;
    TextTable table;
};
} // namespace Zent::Discovery::Console
