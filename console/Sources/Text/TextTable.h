#pragma once

#include "Text/Colours.h"
#include "Text/Style.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Lays out rows of text in columns as wide as they need to be.
class TextTable final
{
public:
    struct Column
    {
        std::string Title;
        std::size_t MinimumWidth = 0;
        std::size_t MaximumWidth = NoLimit; // longer texts are cut
        int LeftOutAs = 0;                  // where space is short: the first, the second; 0 when it always stays
    };

    static constexpr std::size_t NoLimit = static_cast<std::size_t>(-1);

    explicit TextTable(std::vector<Column> columns);

    /// Adds a row with a cell for each column; the cells may hold text from outside.
    void AddRow(const std::vector<std::string>& cells, Style style = Style::Plain);

    /// Adds a line of its own below the last row, set off to the right; text may come from outside.
    void AddNote(const std::string& text);

    /// The titles and then the rows and notes, without line ends. No row is wider than the limit: columns become
    /// narrower, then some are left out, and at last rows are cut.
    std::vector<std::string> Lines(const Colours& colours, std::size_t limit = NoLimit) const;

private:
    struct Row
    {
        std::vector<std::string> Cells; // one without a column when it is a note
        bool IsNote;
        Style Look;
    };

    struct Place
    {
        std::size_t Column;
        std::size_t Width;
    };

    /// The columns to show.
    using Layout = std::vector<Place>;

    Layout LayoutFor(std::size_t limit) const;
    Layout NaturalLayout() const;
    bool Shrink(Layout& layout, std::size_t limit) const;
    bool LeaveOneOut(Layout& layout) const;
    static std::string Line(const Row& row, const Layout& layout);

    const std::vector<Column> columns;
    std::vector<Row> rows; // the titles first
};
} // namespace Zent::Discovery::Console
