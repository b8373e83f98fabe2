#include "support/Grammar.h"

#include "support/AllocationFaults.h"

#include <algorithm>
#include <regex>
#include <string>

namespace Fuzzing
{
namespace
{
constexpr std::size_t LongestText = 1000; // a regular expression takes stack for each character

bool IsMatch(std::string_view text, const std::regex& pattern)
{
    return text.size() <= LongestText && std::regex_match(text.begin(), text.end(), pattern);
}

/// Whether a number of any length is at most 2147483647.
bool IsInRange(std::string_view digits)
{
    constexpr std::string_view Largest = "2147483647";
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits.size() < Largest.size() || (digits.size() == Largest.size() && digits <= Largest);
}
} // namespace

bool Grammar::IsMACAddress(std::string_view text)
{
    const AllocationFaults::Pause pause;
    static const std::regex pattern("[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}");
    return IsMatch(text, pattern);
}

bool Grammar::IsIPAddress(std::string_view text)
{
    const AllocationFaults::Pause pause;
    static const std::string octet = "(0?[0-9]?[0-9]|1[0-9]{2}|2[0-4][0-9]|25[0-5])";
    static const std::regex pattern(octet + "(\\." + octet + "){3}");
    return IsMatch(text, pattern);
}

bool Grammar::IsVersion(std::string_view text)
{
    const AllocationFaults::Pause pause;
    static const std::regex pattern("[0-9]+(\\.[0-9]+){1,3}");
    if (!IsMatch(text, pattern))
    {
        return false;
    }
    bool isInRange = true;
    while (!text.empty())
    {
        const std::size_t dot = std::min(text.find('.'), text.size());
        isInRange = isInRange && IsInRange(text.substr(0, dot));
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return isInRange;
}
} // namespace Fuzzing
