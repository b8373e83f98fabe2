#include "Text/CsvText.h"

#include "Text/TerminalText.h"

#include <string_view>

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::string_view BeginsFormula = "=+-@";
constexpr std::string_view Quoted = "\",;"; // a semicolon separates cells, too, where the comma is the decimal sign

std::string Cell(const std::string& value)
{
    // Spreadsheets skip blanks in front of a formula.
    const std::size_t first = value.find_first_not_of(' ');
    const bool isFormula = first != std::string::npos && BeginsFormula.find(value[first]) != std::string_view::npos;
    const std::string text = (isFormula ? "'" : "") + TerminalText::Plain(value);
    if (text.find_first_of(Quoted) == std::string::npos)
    {
        return text;
    }
    std::string quoted = "\"";
    for (const char character : text)
    {
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    }
    return quoted + '"';
}
} // namespace

std::string CsvText::Row(const std::vector<std::string>& cells)
{
    std::string row;
    for (const std::string& cell : cells)
    {
        row += (&cell == &cells.front() ? "" : ",") + Cell(cell);
    }
    return row;
}
} // namespace Zent::Discovery::Console
