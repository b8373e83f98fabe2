#include "Text/TextTable.h"

#include "Text/TerminalText.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::size_t Gap = 2;           // between columns
constexpr std::size_t StillUseful = 10;  // a column cut below that tells too little
constexpr std::size_t NeverCut = 17;     // columns that are at most that wide hold addresses, no use when cut
constexpr std::size_t MaximumNote = 400; // a device with endless texts must not hide the others
} // namespace

TextTable::TextTable(std::vector<Column> columns)
    : columns(std::move(columns))
{
    std::vector<std::string> titles;
    for (const Column& column : this->columns)
    {
        titles.push_back(column.Title);
    }
    AddRow(titles, Style::Title);
}

void TextTable::AddRow(const std::vector<std::string>& cells, Style style)
{
    Row row{{}, false, style};
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        row.Cells.push_back(TerminalText::Shorten(TerminalText::Plain(cells[i]), columns[i].MaximumWidth));
    }
    rows.push_back(std::move(row));
}

void TextTable::AddNote(const std::string& text)
{
    rows.push_back({{"    " + TerminalText::Shorten(TerminalText::Plain(text), MaximumNote)}, true, Style::Plain});
}

std::vector<std::string> TextTable::Lines(const Colours& colours, std::size_t limit) const
{
    const Layout layout = LayoutFor(limit);
    std::vector<std::string> lines;
    for (const Row& row : rows)
    {
        lines.push_back(row.IsNote ? row.Cells.front()
                                   : colours.Paint(TerminalText::Shorten(Line(row, layout), limit), row.Look));
    }
    return lines;
}

TextTable::Layout TextTable::LayoutFor(std::size_t limit) const
{
    Layout candidates = NaturalLayout();
    for (;;)
    {
        Layout layout = candidates;
        if (Shrink(layout, limit) || !LeaveOneOut(candidates))
        {
            return layout;
        }
    }
}

TextTable::Layout TextTable::NaturalLayout() const
{
    Layout layout;
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        std::size_t width = columns[i].MinimumWidth;
        for (const Row& row : rows)
        {
            width = row.IsNote ? width : std::max(width, TerminalText::Width(row.Cells[i]));
        }
        layout.push_back({i, width});
    }
    return layout;
}

/// Makes the widest columns narrower; false when that is not enough.
bool TextTable::Shrink(Layout& layout, std::size_t limit) const
{
    std::size_t total = Gap * (layout.size() - 1);
    for (const Place& place : layout)
    {
        total += place.Width;
    }
    const auto spare = [this](const Place& place) {
        return columns[place.Column].MaximumWidth <= NeverCut || place.Width <= StillUseful ? 0 : place.Width;
    };
    while (total > limit)
    {
        Place& widest = *std::ranges::max_element(layout, {}, spare);
        if (spare(widest) == 0)
        {
            return false;
        }
        --widest.Width;
        --total;
    }
    return true;
}

bool TextTable::LeaveOneOut(Layout& layout) const
{
    const auto rank = [this](const Place& place) {
        const int leftOutAs = columns[place.Column].LeftOutAs;
        return leftOutAs == 0 ? static_cast<int>(columns.size()) + 1 : leftOutAs;
    };
    const auto next = std::ranges::min_element(layout, {}, rank);
    if (columns[next->Column].LeftOutAs == 0)
    {
        return false;
    }
    layout.erase(next);
    return true;
}

std::string TextTable::Line(const Row& row, const Layout& layout)
{
    std::string line;
    for (const Place& place : layout)
    {
        std::string cell = TerminalText::Shorten(row.Cells[place.Column], place.Width);
        const bool isLast = &place == &layout.back(); // which needs no blanks behind it
        line += isLast ? std::move(cell) : TerminalText::Pad(std::move(cell), place.Width + Gap);
    }
    return line;
}
} // namespace Zent::Discovery::Console
