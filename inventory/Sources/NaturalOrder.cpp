#include "Inventory/NaturalOrder.h"

#include "AsciiCase.h"

#include <algorithm>
#include <cstddef>

namespace Zent::Discovery::Inventory
{
namespace
{
bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Takes the run of digits at the start of the text away, and gives it without leading zeros.
std::string_view TakeNumber(std::string_view& text)
{
    const std::size_t end = static_cast<std::size_t>(std::ranges::find_if_not(text, &IsDigit) - text.begin());
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}
} // namespace

bool NaturalOrder::IsBefore(std::string_view left, std::string_view right)
{
    while (!left.empty() && !right.empty())
    {
        if (IsDigit(left.front()) && IsDigit(right.front()))
        {
            const std::string_view leftNumber = TakeNumber(left);
            const std::string_view rightNumber = TakeNumber(right);
            if (leftNumber != rightNumber)
            {
                return leftNumber.size() != rightNumber.size() ? leftNumber.size() < rightNumber.size()
                                                               : leftNumber < rightNumber;
            }
            continue;
        }
        const auto leftCharacter = static_cast<unsigned char>(AsciiCase::Lower(left.front()));
        const auto rightCharacter = static_cast<unsigned char>(AsciiCase::Lower(right.front()));
        if (leftCharacter != rightCharacter)
        {
            return leftCharacter < rightCharacter;
        }
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    return left.size() < right.size();
}
} // namespace Zent::Discovery::Inventory
