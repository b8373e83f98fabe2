#pragma once

#include "system/Object.h"

#include <typeinfo>

namespace Nfx::System
{
/// Describes the class of one object. Holds a reference: it must not outlive the object.
class Type final : public Object
{
public:
    explicit Type(const Object& object);

    /// True when the other object is a Type of the same class.
    Boolean Equals(const Object* object) const override;

    /// The fully qualified class name, the same text on every compiler.
    String ToString() const override;

    /// The fully qualified name behind a run-time type.
    static String NameOf(const std::type_info& type);

private:
    const Object& described;
};
} // namespace Nfx::System
