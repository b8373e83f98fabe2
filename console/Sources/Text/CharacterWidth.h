#pragma once

#include <cstddef>

namespace Zent::Discovery::Console
{
/// How many columns of a terminal a character takes. The system's own answer depends on the locale, and Windows has
/// none; these are the properties of Unicode 14.
class CharacterWidth final
{
public:
    CharacterWidth() = delete;

    /// 0 for marks that stand on the character before them, 2 for East Asian characters and emoji, 1 for all others.
    static std::size_t Of(char32_t codePoint);
};
} // namespace Zent::Discovery::Console
