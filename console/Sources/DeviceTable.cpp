#include "DeviceTable.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Console
{
namespace
{
std::vector<TextTable::Column> Titles(const char* first,
                                      const std::vector<const DeviceColumn*>& columns,
                                      bool hasUsualWidths)
{
    std::vector<TextTable::Column> titles;
    if (first != nullptr)
    {
        titles.push_back({first});
    }
    for (const DeviceColumn* column : columns)
    {
        titles.push_back(
            {column->Title, hasUsualWidths ? column->UsualWidth : 0, column->MaximumWidth, column->LeftOutAs});
    }
    return titles;
}
} // namespace

DeviceTable::DeviceTable(const char* firstTitle, Columns columns, bool hasUsualWidths, DeviceColumn::TimePoint now)
    : hasFirst(firstTitle != nullptr)
    , columns(std::move(columns))
    , now(now)
    , table(Titles(firstTitle, this->columns, hasUsualWidths))
{
}

DeviceTable DeviceTable::Snapshot()
{
    return {nullptr, Without({"age"}), false, {}};
}

DeviceTable DeviceTable::WithAges(DeviceColumn::TimePoint now)
{
    return {nullptr, Without({}), false, now};
}

DeviceTable DeviceTable::Stream()
{
    return {"TIME    ", Without({"age"}), true, {}};
}

DeviceTable DeviceTable::Changes()
{
    return {"CHANGE", Without({"message", "age"}), false, {}};
}

void DeviceTable::Add(const Device& device, Style style, const std::string& first)
{
    std::vector<std::string> cells;
    if (hasFirst)
    {
        cells.push_back(first);
    }
    for (const DeviceColumn* column : columns)
    {
        cells.push_back(column->Text(device, now));
    }
    table.AddRow(cells, style);
}

void DeviceTable::AddNote(const std::string& text)
{
    table.AddNote(text);
}

std::vector<std::string> DeviceTable::Lines(const Colours& colours, std::size_t limit) const
{
    return table.Lines(colours, limit);
}

DeviceTable::Columns DeviceTable::Without(const std::vector<std::string>& names)
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
