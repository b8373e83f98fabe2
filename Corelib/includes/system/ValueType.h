#pragma once

#include "system/Object.h"

namespace Nfx::System
{
/// Root of the types that are passed by value: each supplies its own equality, hash and text.
class ValueType : public Object
{
public:
    Boolean Equals(const Object* object) const override = 0;
    Int32 GetHashCode() const override = 0;
    String ToString() const override = 0;
};
} // namespace Nfx::System
