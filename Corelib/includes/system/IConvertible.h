#pragma once

#include "system/Interface.h"

namespace Nfx::System
{
class Int32;
class TypeCode;

/// Implemented by values that convert to a basic type.
class IConvertible : public Interface
{
public:
    /// The basic type that loses nothing.
    virtual TypeCode GetTypeCode() const = 0;

    virtual Int32 ToInt32() const = 0;
};
} // namespace Nfx::System
