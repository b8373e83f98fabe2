#pragma once

#include "system/ValueType.h"

namespace Nfx::System
{
namespace Threading
{
class Interlocked;
}

/// Base of the number types: one value, its text and its parsing. TDerived is the number type, TValue what it holds.
/// Members are defined in the Number source for the types listed there.
template <class TDerived, class TValue>
class Number : public ValueType
{
public:
    using Value = TValue;

    Number() noexcept = default;

    Number(TValue value) noexcept
        : value(value)
    {
    }

    operator TValue() const noexcept { return value; }

    /// True for the same value of the same number type.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// Decimal text; independent of the locale.
    String ToString() const override;

    /// Reads a whole decimal text: no blanks, no plus sign, no prefix; a minus sign for signed types only.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is no such number or out of range.
    static TDerived Parse(const String& text);

private:
    friend class Threading::Interlocked; // changes the value in place

    TValue value = 0;
};
} // namespace Nfx::System
