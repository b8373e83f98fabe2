#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// Makes text that a device chose fit for a terminal. Devices may send anything: escape sequences that reprogram the
/// terminal, line breaks that forge lines, marks that turn the writing direction, bytes that are not UTF-8.
class TerminalText final
{
public:
    TerminalText() = delete;

    /// Shows each byte of what a terminal might act on, or would draw outside its columns, as \xHH, and leaves all
    /// other text as it is.
    static std::string Plain(std::string_view text);

    /// The same for a JSON document, which stays one: with JSON's escapes, and \ufffd for each byte that is not UTF-8.
    static std::string Json(std::string_view document);

    /// The number of columns that text takes which is valid UTF-8.
    static std::size_t Width(std::string_view text);

    /// Cuts text that is valid UTF-8 to that many columns, three periods at its end among them.
    static std::string Shorten(std::string text, std::size_t width);

    /// Fills text up to that many columns with blanks.
    static std::string Pad(std::string text, std::size_t width);
};
} // namespace Zent::Discovery::Console
