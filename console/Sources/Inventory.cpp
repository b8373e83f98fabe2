#include "DeviceTable.h"

#include "TerminalText.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <utility>

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::size_t ColumnCount = 8;

struct Column
{
    const char* Title;
    std::size_t UsualWidth;
    std::size_t MaximumWidth; // a device with endless texts must not break the table of the others
};

constexpr std::array<Column, ColumnCount> Columns = {{{"HOST NAME", 16, 40},
                                                      {"TYPE", 10, 24},
                                                      {"FAMILY", 8, 24},
                                                      {"SERIAL", 10, 24},
                                                      {"MAC", 17, 17},
                                                      {"IP", 15, 15},
                                                      {"PRODUCTS", 30, 80},
                                                      {"LAST MESSAGE", 12, 12}}};

using Cells = std::array<std::string, ColumnCount>;
using Widths = std::array<std::size_t, ColumnCount>;

std::string ProductsText(const Device& device)
{
    std::string text;
    for (const Device::Product& product : device.Products)
    {
        text += (text.empty() ? "" : ", ") + product.Name + " " + product.Version;
    }
    return text;
}

Cells CellsOf(const Device& device)
{
    const Device::Interface& main = device.MainInterface();
    Cells cells = {device.HostName, device.Type,    device.Family,        device.SerialNumber,
                   main.MACAddress, main.IPAddress, ProductsText(device), device.Message.KindName()};
    for (std::size_t i = 0; i < ColumnCount; ++i)
    {
        cells[i] = TerminalText::Shorten(TerminalText::Plain(cells[i]), Columns[i].MaximumWidth);
    }
    return cells;
}

Cells TitleCells()
{
    Cells cells;
    std::ranges::transform(Columns, cells.begin(), &Column::Title);
    return cells;
}

std::string Line(const Cells& cells, const Widths& widths)
{
    std::string line;
    for (std::size_t i = 0; i + 1 < ColumnCount; ++i)
    {
        line += TerminalText::Pad(cells[i], widths[i]) + "  ";
    }
    return line + cells.back();
}

Widths UsualWidths()
{
    Widths widths;
    std::ranges::transform(Columns, widths.begin(), &Column::UsualWidth);
    return widths;
}
} // namespace

void DeviceTable::Add(Device device)
{
    const auto known = std::ranges::find_if(devices, [&device](const Device& each) { return each.IsSameAs(device); });
    if (known == devices.end())
    {
        devices.push_back(std::move(device));
    }
    else
    {
        *known = std::move(device);
    }
}

const std::vector<Device>& DeviceTable::Devices() const
{
    return devices;
}

void DeviceTable::Print(std::ostream& out) const
{
    std::vector<Cells> lines = {TitleCells()};
    std::ranges::transform(devices, std::back_inserter(lines), &CellsOf);
    Widths widths{};
    for (const Cells& cells : lines)
    {
        for (std::size_t i = 0; i < ColumnCount; ++i)
        {
            widths[i] = std::max(widths[i], TerminalText::Width(cells[i]));
        }
    }
    for (const Cells& cells : lines)
    {
        out << Line(cells, widths) << '\n';
    }
}

std::string DeviceTable::Row(const Device& device)
{
    return Line(CellsOf(device), UsualWidths());
}

std::string DeviceTable::Titles()
{
    return Line(TitleCells(), UsualWidths());
}
} // namespace Zent::Discovery::Console
