#include "Show/DeviceTextTable.h"

#include <algorithm>
#include <string_view>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceColumn;

namespace Zent::Discovery::Console
{
namespace
{
/// How a column of devices looks.
struct Look
{
    const char* Name; // of the column
    const char* Title;
    std::size_t UsualWidth;
    std::size_t MaximumWidth; // a device with endless texts must not break the table of the others
    int LeftOutAs;            // where a terminal is narrow: the first, the second; 0 when it always stays
};

constexpr Look Looks[] = {
    {"name", "HOST NAME", 16, 40, 0},
    {"type", "TYPE", 10, 24, 4},
    {"family", "FAMILY", 8, 24, 2},
    {"serial", "SERIAL", 10, 24, 3},
    {"mac", "MAC", 17, 17, 5},
    {"ip", "IP", 15, 15, 0},
    {"products", "PRODUCTS", 30, 80, 1},
    {"message", "LAST MESSAGE", 12, 12, 0},
    {"age", "AGE", 6, 8, 0},
};

const Look& LookOf(const DeviceColumn& column)
{
    return *std::ranges::find(Looks, std::string_view(column.Name),
                              [](const Look& each) { return std::string_view(each.Name); });
}

std::vector<TextTable::Column> Titles(const std::vector<const char*>& first,
                                      const std::vector<const DeviceColumn*>& columns,
                                      bool hasUsualWidths)
{
    std::vector<TextTable::Column> titles;
    for (const char* title : first)
    {
        titles.push_back({title});
    }
    for (const DeviceColumn* column : columns)
    {
        const Look& look = LookOf(*column);
        titles.push_back({look.Title, hasUsualWidths ? look.UsualWidth : 0, look.MaximumWidth, look.LeftOutAs});
    }
    return titles;
}
} // namespace

DeviceTextTable::DeviceTextTable(const std::vector<const char*>& firstTitles,
                                 Columns columns,
                                 bool hasUsualWidths,
                                 DeviceColumn::TimePoint now)
    : hasFirst(!firstTitles.empty())
    , columns(std::move(columns))
    , now(now)
    , table(Titles(firstTitles, this->columns, hasUsualWidths))
{
}

DeviceTextTable DeviceTextTable::Snapshot()
{
    return {{}, Without({"age"}), false, {}};
}

DeviceTextTable DeviceTextTable::WithStates(DeviceColumn::TimePoint now)
{
    return {{"STATE"}, Without({}), false, now};
}

DeviceTextTable DeviceTextTable::Stream()
{
    return {{"TIME    "}, Without({"age"}), true, {}};
}

DeviceTextTable DeviceTextTable::Changes()
{
    return {{"CHANGE"}, Without({"message", "age"}), false, {}};
}

DeviceTextTable DeviceTextTable::OfSites(DeviceColumn::TimePoint now)
{
    return {{"SITE", "STATE"}, Without({"message"}), false, now};
}

void DeviceTextTable::Add(const Device& device, Style style, const std::string& first)
{
    Add(device, style, hasFirst ? std::vector{first} : std::vector<std::string>());
}

void DeviceTextTable::Add(const Device& device, Style style, std::vector<std::string> first)
{
    std::vector<std::string> cells = std::move(first);
    // Where states are shown, there are devices that are known though nobody has heard of them.
    const bool isHeard = now == DeviceColumn::TimePoint() || device.Message.Received != DeviceColumn::TimePoint();
    for (const DeviceColumn* column : columns)
    {
        const std::string_view name = column->Name;
        cells.push_back(isHeard || (name != "message" && name != "age") ? column->Text(device, now) : "");
    }
    table.AddRow(cells, style);
}

void DeviceTextTable::AddNote(const std::string& text)
{
    table.AddNote(text);
}

std::vector<std::string> DeviceTextTable::Lines(const Colours& colours, std::size_t limit) const
{
    return table.Lines(colours, limit);
}

DeviceTextTable::Columns DeviceTextTable::Without(const std::vector<std::string>& names)
{
    Columns result;
    for (const DeviceColumn& column : DeviceColumn::All())
    {
        if (std::ranges::find(names, column.Name) == names.end())
        {
            result.push_back(&column);
        }
    }
    return result;
}
} // namespace Zent::Discovery::Console
