#include "ReadNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace
{
const char* SkipDigits(const char* position)
{
    while (*position >= '0' && *position <= '9')
    {
        ++position;
    }
    return position;
}

/// The end of what follows when a digit is there, else the position itself.
const char* SkipFraction(const char* position)
{
    const char* const end = *position == '.' ? SkipDigits(position + 1) : position;
    return end > position + 1 ? end : position;
}

const char* SkipExponent(const char* position)
{
    if (*position != 'e' && *position != 'E')
    {
        return position;
    }
    const char* const digits = position[1] == '+' || position[1] == '-' ? position + 2 : position + 1;
    const char* const end = SkipDigits(digits);
    return end > digits ? end : position;
}

/// The exponent's value, but no farther out than it takes to outweigh any number of digits: a count of them is added.
std::int64_t ReadExponent(const char* position, const char* end)
{
    if (position == end)
    {
        return 0;
    }
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 2;
    const char* const digits = position[1] == '+' ? position + 2 : position + 1;
    std::int64_t exponent = 0;
    if (std::from_chars(digits, end, exponent).ec != std::errc())
    {
        exponent = *digits == '-' ? -limit : limit;
    }
    return std::clamp(exponent, -limit, limit);
}

/// Whether a number outside of the range of double is too large rather than too small: the place of its first digit
/// other than 0 tells.
bool IsHuge(const char* integer, const char* fraction, const char* exponent, const char* end)
{
    std::int64_t magnitude = fraction - integer;
    if (*integer == '0')
    {
        const char* digit = fraction == exponent ? fraction : fraction + 1;
        const char* const firstDigit = digit;
        while (digit != exponent && *digit == '0')
        {
            ++digit;
        }
        magnitude = firstDigit - digit;
    }
    return magnitude + ReadExponent(exponent, end) > 0;
}
} // namespace

double NfxReadNumber(const char* text, char** end)
{
    *end = const_cast<char*>(text);
    const char* const integer = *text == '-' ? text + 1 : text;
    const char* const fraction = *integer == '0' ? integer + 1 : SkipDigits(integer);
    if (fraction == integer)
    {
        return 0;
    }
    const char* const exponent = SkipFraction(fraction);
    const char* const last = SkipExponent(exponent);
    *end = const_cast<char*>(last);

    double number = 0;
    if (std::from_chars(integer, last, number).ec == std::errc::result_out_of_range)
    {
        number = IsHuge(integer, fraction, exponent, last) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return integer == text ? number : -number;
}
