#pragma once

#include "system/ValueType.h"

#include <concepts>

namespace Nfx::System
{
/// A truth value whose texts are "True" and "False".
class Boolean final : public ValueType
{
public:
    Boolean() noexcept = default;

    /// Takes bool alone, so that a pointer or a number never becomes a truth value by accident.
    template <std::same_as<bool> T>
    Boolean(T value) noexcept
        : value(value)
    {
    }

    operator bool() const noexcept { return value; }

    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;
    String ToString() const override;

    /// Accepts exactly "True" and "False".
    /// @throws Exception with ErrorCodes::InvalidFormat for any other text.
    static Boolean Parse(const String& text);

    /// Like Parse; false for any other text, and result stays untouched.
    static bool TryParse(const String& text, Boolean& result);

private:
    bool value = false;
};
} // namespace Nfx::System
