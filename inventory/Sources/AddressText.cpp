#include "Inventory/AddressText.h"

#include <cstddef>

namespace Zent::Discovery::Inventory
{
namespace
{
/// Rewrites each part between separators, and the separators.
template <class TRewrite>
std::string Rewrite(std::string_view text, char separator, char newSeparator, TRewrite&& rewrite)
{
    std::string result;
    for (;;)
    {
        const std::size_t end = text.find(separator);
        result += rewrite(std::string(text.substr(0, end)));
        if (end == std::string_view::npos)
        {
            return result;
        }
        result += newSeparator;
        text.remove_prefix(end + 1);
    }
}
} // namespace

std::string AddressText::MAC(std::string_view text)
{
    const char separator = text.find(':') == std::string_view::npos ? '-' : ':';
    return Rewrite(text, separator, ':', [](std::string part) {
        for (char& digit : part)
        {
            digit = digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
        }
        return part.size() == 1 ? "0" + part : part;
    });
}

std::string AddressText::IP(std::string_view text)
{
    return Rewrite(text, '.', '.', [](const std::string& part) {
        const std::size_t start = part.find_first_not_of('0');
        return start == std::string::npos ? "0" : part.substr(start);
    });
}
} // namespace Zent::Discovery::Inventory
