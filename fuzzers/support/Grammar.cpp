#include "support/Grammar.h"

#include "support/MemoryFaults.h"

#include <algorithm>
#include <regex>
#include <string>

namespace Fuzzing
{
namespace
{
constexpr std::size_t LongestText = 100; // none that matches is longer, and each character takes stack

bool IsMatch(std::string_view text, const std::regex& pattern)
{
    return text.size() <= LongestText && std::regex_match(text.begin(), text.end(), pattern);
}

/// Whether a text of any length is a number of at most 2147483647; zeros may go before it.
bool IsNumber(std::string_view text)
{
    constexpr std::string_view Largest = "2147483647";
    const bool hasDigitsOnly = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return hasDigitsOnly && (text.size() < Largest.size() || (text.size() == Largest.size() && text <= Largest));
}
} // namespace

bool Grammar::IsMACAddress(std::string_view text)
{
    const Tests::MemoryFaults::Scope spared(false);
    static const std::regex pattern("[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}");
    return IsMatch(text, pattern);
}

bool Grammar::IsIPAddress(std::string_view text)
{
    const Tests::MemoryFaults::Scope spared(false);
    static const std::string octet = "(0?[0-9]?[0-9]|1[0-9]{2}|2[0-4][0-9]|25[0-5])";
    static const std::regex pattern(octet + "(\\." + octet + "){3}");
    return IsMatch(text, pattern);
}

bool Grammar::IsVersion(std::string_view text)
{
    std::size_t numbers = 1;
    for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.'))
    {
        if (!IsNumber(text.substr(0, dot)))
        {
            return false;
        }
        text.remove_prefix(dot + 1);
        ++numbers;
    }
    return IsNumber(text) && numbers >= 2 && numbers <= 4;
}
} // namespace Fuzzing
