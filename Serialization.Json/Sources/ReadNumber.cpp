#include "ReadNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace Zent::Utils::Json
{
namespace
{
bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

const char* SkipDigits(const char* position, const char* end)
{
    return std::find_if_not(position, end, IsDigit);
}

/// Behind the integer part, which has no leading zeros; begin when there is none.
const char* SkipInteger(const char* begin, const char* end)
{
    return begin != end && *begin == '0' ? begin + 1 : SkipDigits(begin, end);
}

/// Behind a point and the digits after it; the position itself when they are not there.
const char* SkipFraction(const char* position, const char* end)
{
    if (position == end || *position != '.')
    {
        return position;
    }
    const char* const last = SkipDigits(position + 1, end);
    return last == position + 1 ? position : last;
}

const char* SkipExponent(const char* position, const char* end)
{
    if (position == end || (*position != 'e' && *position != 'E'))
    {
        return position;
    }
    const char* digits = position + 1;
    if (digits != end && (*digits == '+' || *digits == '-'))
    {
        ++digits;
    }
    const char* const last = SkipDigits(digits, end);
    return last == digits ? position : last;
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
        const char* const firstDigit = fraction == exponent ? fraction : fraction + 1;
        magnitude = firstDigit - std::find_if(firstDigit, exponent, [](char digit) { return digit != '0'; });
    }
    return magnitude + ReadExponent(exponent, end) > 0;
}
} // namespace

const char* ReadNumber(const char* begin, const char* end, double* number) noexcept
{
    const char* const integer = begin != end && *begin == '-' ? begin + 1 : begin;
    const char* const fraction = SkipInteger(integer, end);
    if (fraction == integer)
    {
        return begin;
    }
    const char* const exponent = SkipFraction(fraction, end);
    const char* const last = SkipExponent(exponent, end);

    double magnitude = 0;
    if (std::from_chars(integer, last, magnitude).ec == std::errc::result_out_of_range)
    {
        magnitude = IsHuge(integer, fraction, exponent, last) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    *number = integer == begin ? magnitude : -magnitude;
    return last;
}
} // namespace Zent::Utils::Json
