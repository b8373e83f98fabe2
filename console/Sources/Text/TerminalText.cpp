#include "Text/TerminalText.h"

#include "Text/CharacterWidth.h"

#include <cstdint>

namespace Zent::Discovery::Console
{
namespace
{
struct Character
{
    char32_t CodePoint;
    std::size_t Length; // in bytes
};

constexpr char32_t NotUtf8 = 0xFFFFFFFF;

/// How a character that starts with this byte continues.
struct Lead
{
    std::size_t Length;
    char32_t Bits;
    char32_t Lowest; // a lower code point has a shorter form, so this one is invalid
};

Lead LeadOf(std::uint8_t byte)
{
    if (byte < 0x80)
    {
        return {1, byte, 0};
    }
    if ((byte & 0xE0) == 0xC0)
    {
        return {2, byte & 0x1Fu, 0x80};
    }
    if ((byte & 0xF0) == 0xE0)
    {
        return {3, byte & 0x0Fu, 0x800};
    }
    if ((byte & 0xF8) == 0xF0)
    {
        return {4, byte & 0x07u, 0x10000};
    }
    return {0, 0, 0};
}

/// The character at the start of the text, which is not empty; NotUtf8 of one byte when there is none.
Character Decode(std::string_view text)
{
    const Lead lead = LeadOf(static_cast<std::uint8_t>(text[0]));
    if (lead.Length == 0 || lead.Length > text.size())
    {
        return {NotUtf8, 1};
    }
    char32_t codePoint = lead.Bits;
    for (std::size_t i = 1; i < lead.Length; ++i)
    {
        const std::uint8_t byte = static_cast<std::uint8_t>(text[i]);
        if ((byte & 0xC0) != 0x80)
        {
            return {NotUtf8, 1};
        }
        codePoint = codePoint << 6 | (byte & 0x3Fu);
    }
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < lead.Lowest || codePoint > 0x10FFFF || isSurrogate)
    {
        return {NotUtf8, 1};
    }
    return {codePoint, lead.Length};
}

/// Control characters, line and paragraph separators, and what turns or joins the writing direction.
bool IsDangerous(char32_t codePoint)
{
    struct Range
    {
        char32_t First;
        char32_t Last;
    };

    static constexpr Range Ranges[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x61C, 0x61C},   {0x200B, 0x200F},
                                       {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {NotUtf8, NotUtf8}};
    for (const Range& range : Ranges)
    {
        if (codePoint >= range.First && codePoint <= range.Last)
        {
            return true;
        }
    }
    return false;
}

/// Marks beyond these on one character reach into the lines above and below.
constexpr std::size_t MaximumMarks = 4;

/// Finds the characters of a text that a table cannot hold, besides the dangerous ones.
class Misfits final
{
public:
    /// Asked for each character of the text in its order.
    bool Has(char32_t codePoint)
    {
        if (CharacterWidth::Of(codePoint) > 0)
        {
            marksLeft = MaximumMarks;
            return false;
        }
        // Variation selectors and tags change the width of the character before them on some terminals only.
        const bool isSelector = (codePoint >= 0xFE00 && codePoint <= 0xFE0F) || codePoint >= 0xE0000;
        if (isSelector || marksLeft == 0)
        {
            return true;
        }
        --marksLeft;
        return false;
    }

private:
    std::size_t marksLeft = 0; // a mark at the start would stand on what comes before the text
};

/// Copies text, with what escape(character, its bytes) gives in place of each character that mustEscape picks.
template <class TMustEscape, class TEscape>
std::string Escape(std::string_view text, TMustEscape&& mustEscape, TEscape&& escape)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty())
    {
        const Character character = Decode(text);
        const std::string_view bytes = text.substr(0, character.Length);
        if (mustEscape(character.CodePoint))
        {
            result += escape(character, bytes);
        }
        else
        {
            result += bytes;
        }
        text.remove_prefix(character.Length);
    }
    return result;
}

/// The value in so many digits, from the given set of 16.
std::string Hexadecimal(char32_t value, int digits, const char* digitSet)
{
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    {
        text += digitSet[value >> shift & 0xF];
    }
    return text;
}
} // namespace

std::string TerminalText::Plain(std::string_view text)
{
    Misfits misfits;
    return Escape(
        text, [&misfits](char32_t codePoint) { return IsDangerous(codePoint) || misfits.Has(codePoint); },
        [](const Character&, std::string_view bytes) {
            std::string escaped;
            for (const char byte : bytes)
            {
                escaped += "\\x" + Hexadecimal(static_cast<std::uint8_t>(byte), 2, "0123456789ABCDEF");
            }
            return escaped;
        });
}

std::string TerminalText::Json(std::string_view document)
{
    return Escape(document, &IsDangerous, [](const Character& character, std::string_view) {
        const char32_t codePoint = character.CodePoint == NotUtf8 ? 0xFFFD : character.CodePoint;
        return "\\u" + Hexadecimal(codePoint, 4, "0123456789abcdef"); // all dangerous ones have four digits
    });
}

std::size_t TerminalText::Width(std::string_view text)
{
    std::size_t width = 0;
    while (!text.empty())
    {
        const Character character = Decode(text);
        width += CharacterWidth::Of(character.CodePoint);
        text.remove_prefix(character.Length);
    }
    return width;
}

std::string TerminalText::Shorten(std::string text, std::size_t width)
{
    static constexpr std::string_view Ellipsis = "...";
    if (Width(text) <= width)
    {
        return text;
    }
    const std::string_view ellipsis = Ellipsis.substr(0, width);
    std::size_t end = 0;
    for (std::size_t kept = 0;;)
    {
        const Character character = Decode(std::string_view(text).substr(end));
        kept += CharacterWidth::Of(character.CodePoint);
        if (kept + ellipsis.size() > width)
        {
            break;
        }
        end += character.Length;
    }
    text.replace(end, std::string::npos, ellipsis);
    return text;
}

std::string TerminalText::Pad(std::string text, std::size_t width)
{
    const std::size_t present = Width(text);
    text.append(width > present ? width - present : 0, ' ');
    return text;
}
} // namespace Zent::Discovery::Console
