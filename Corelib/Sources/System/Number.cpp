#include "system/Number.h"

#include "system/Boolean.h"
#include "system/Byte.h"
#include "system/Double.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/Int64.h"
#include "system/IntPtr.h"
#include "system/String.h"
#include "system/UInt32.h"
#include "system/UInt64.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <type_traits>

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Number";

template <class TValue>
bool IsFinite(TValue value)
{
    if constexpr (std::is_floating_point_v<TValue>)
    {
        return std::isfinite(value);
    }
    return true;
}
} // namespace

template <class TDerived, class TValue>
Boolean Number<TDerived, TValue>::Equals(const Object* object) const
{
    const TDerived* other = dynamic_cast<const TDerived*>(object);
    return other != nullptr && TValue{*other} == value;
}

template <class TDerived, class TValue>
Int32 Number<TDerived, TValue>::GetHashCode() const
{
    return static_cast<std::int32_t>(std::hash<TValue>{}(value));
}

template <class TDerived, class TValue>
String Number<TDerived, TValue>::ToString() const
{
    char digits[32];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    return String(digits, static_cast<std::size_t>(end.ptr - digits));
}

template <class TDerived, class TValue>
TDerived Number<TDerived, TValue>::Parse(const String& text)
{
    const char* const first = text.CString();
    const char* const last = first + text.Length();
    TValue result{};
    const std::from_chars_result end = std::from_chars(first, last, result);
    if (end.ec != std::errc() || end.ptr != last || !IsFinite(result))
    {
        throw Exception(ErrorCodes::InvalidFormat, "no number : " + text.Quoted(), SourceName, __LINE__);
    }
    return TDerived(result);
}

template class Number<Byte, std::uint8_t>;
template class Number<Double, double>;
template class Number<Int32, std::int32_t>;
template class Number<Int64, std::int64_t>;
template class Number<IntPtr, std::intptr_t>;
template class Number<UInt32, std::uint32_t>;
template class Number<UInt64, std::uint64_t>;
} // namespace Nfx::System
