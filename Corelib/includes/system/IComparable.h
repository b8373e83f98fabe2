#pragma once

#include "system/Interface.h"

namespace Nfx::System
{
class Int32;
class Object;

/// Implemented by values that have an order among themselves.
class IComparable : public Interface
{
public:
    /// Negative, zero or positive as this value orders before, with or after the other.
    /// @throws ArgumentNullException when object is null; ArgumentException when it is of another class.
    virtual Int32 CompareTo(const Object* object) const = 0;
};
} // namespace Nfx::System
