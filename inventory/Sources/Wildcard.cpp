#include "Inventory/Wildcard.h"

#include "AsciiCase.h"

#include <cstddef>
#include <utility>

namespace Zent::Discovery::Inventory
{
namespace
{
bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Where the character at the position ends; ? must not match half of one.
std::size_t EndOfCharacter(std::string_view text, std::size_t position)
{
    do
    {
        ++position;
    } while (position < text.size() && IsContinuation(text[position]));
    return position;
}
} // namespace

Wildcard::Wildcard(std::string pattern)
    : pattern(std::move(pattern))
{
}

bool Wildcard::Matches(std::string_view text) const
{
    std::size_t at = 0;
    std::size_t inPattern = 0;
    // Where to go on when a later character does not match: behind the last *, which then takes one more character.
    std::size_t lastStar = std::string::npos;
    std::size_t afterStar = 0;
    while (at < text.size())
    {
        const char wanted = inPattern < pattern.size() ? pattern[inPattern] : '\0';
        if (wanted == '*')
        {
            lastStar = inPattern++;
            afterStar = at;
        }
        else if (wanted == '?')
        {
            ++inPattern;
            at = EndOfCharacter(text, at);
        }
        else if (inPattern < pattern.size() && AsciiCase::Lower(wanted) == AsciiCase::Lower(text[at]))
        {
            ++inPattern;
            ++at;
        }
        else if (lastStar != std::string::npos)
        {
            inPattern = lastStar + 1;
            at = afterStar = EndOfCharacter(text, afterStar);
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string::npos;
}
} // namespace Zent::Discovery::Inventory
