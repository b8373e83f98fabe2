#pragma once

namespace Zent::Discovery::Inventory
{
/// Letters of ASCII; the standard library's operations depend on the locale.
class AsciiCase final
{
public:
    AsciiCase() = delete;

    static constexpr char Lower(char character)
    {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    }
};
} // namespace Zent::Discovery::Inventory
