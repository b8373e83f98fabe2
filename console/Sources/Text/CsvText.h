#pragma once

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Comma-separated values for spreadsheets.
class CsvText final
{
public:
    CsvText() = delete;

    /// A row without a line end. The cells may hold text from outside: it becomes fit for a terminal, which keeps each
    /// row in one line, and a cell that a spreadsheet would take for a formula begins with an apostrophe.
    static std::string Row(const std::vector<std::string>& cells);
};
} // namespace Zent::Discovery::Console
