#pragma once

#include "system/Boolean.h"
#include "system/EnumName.h"
#include "system/Int32.h"
#include "system/String.h"
#include "system/ValueType.h"

#include <cstdint>
#include <span>

namespace Nfx::System
{
/// What all enumerations share: the value, and the look-ups in a name table.
class EnumBase : public ValueType
{
public:
    operator std::int32_t() const noexcept { return value; }

    Int32 GetHashCode() const override;

protected:
    EnumBase(std::int32_t value) noexcept
        : value(value)
    {
    }

    /// Null when the table has no such value.
    static const char* FindName(std::span<const EnumName> names, std::int32_t value) noexcept;

    /// Null when the table has no such name; case counts.
    static const EnumName* FindValue(std::span<const EnumName> names, const String& name) noexcept;

    /// The name, or the decimal number of a value without one.
    static String TextOf(std::span<const EnumName> names, std::int32_t value);

    /// The value of a name.
    /// @throws Exception with ErrorCodes::InvalidFormat when the table has no such name.
    static std::int32_t ParseName(std::span<const EnumName> names, const String& name);

private:
    std::int32_t value;
};

/// Base of the enumerations: T supplies the values and a constexpr table T::Names, in which the first row of a
/// repeated value gives its text. Being constant the tables have no first use that threads could race for.
template <class T>
class Enum : public EnumBase
{
public:
    Enum(std::int32_t value = 0) noexcept
        : EnumBase(value)
    {
    }

    /// True for the same value of the same enumeration.
    Boolean Equals(const Object* object) const override;

    /// The name, or the decimal number of a value without one.
    String ToString() const override;

    /// The value of a name; case counts.
    /// @throws Exception with ErrorCodes::InvalidFormat when there is no such name.
    static T Parse(const String& name) { return T(ParseName(T::Names, name)); }

    /// True when the value has a name.
    static bool IsDefined(std::int32_t value) noexcept { return FindName(T::Names, value) != nullptr; }
};

template <class T>
Boolean Enum<T>::Equals(const Object* object) const
{
    const T* other = dynamic_cast<const T*>(object);
    return other != nullptr && std::int32_t{*other} == std::int32_t{*this};
}

template <class T>
String Enum<T>::ToString() const
{
    return TextOf(T::Names, *this);
}
} // namespace Nfx::System
