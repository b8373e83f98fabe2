#pragma once

#include "system/Enum.h"

namespace Nfx::System
{
/// The basic types a value can be converted to.
class TypeCode final : public Enum<TypeCode>
{
public:
    enum : std::int32_t
    {
        Empty,
        Object,
        Boolean,
        Char,
        SByte,
        Byte,
        Int16,
        UInt16,
        Int32,
        UInt32,
        Int64,
        UInt64,
        Single,
        Double,
        DateTime,
        String
    };

    static constexpr EnumName Names[] = {
        {Empty, "Empty"},   {Object, "Object"}, {Boolean, "Boolean"},   {Char, "Char"},
        {SByte, "SByte"},   {Byte, "Byte"},     {Int16, "Int16"},       {UInt16, "UInt16"},
        {Int32, "Int32"},   {UInt32, "UInt32"}, {Int64, "Int64"},       {UInt64, "UInt64"},
        {Single, "Single"}, {Double, "Double"}, {DateTime, "DateTime"}, {String, "String"}};

    using Enum::Enum;
};
} // namespace Nfx::System
