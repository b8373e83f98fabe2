#pragma once

namespace Nfx::System
{
class Boolean;
class Int32;
class String;
class Type;

/// Root of every class. Has no data and no lock: what an object shares between threads it guards itself.
class Object
{
public:
    virtual ~Object();

    /// True only for the very same object; classes with a value override it. A null object is never equal.
    virtual Boolean Equals(const Object* object) const;

    /// Derived from the low 32 bits of the address: the address itself while its top bit is clear, else its complement.
    virtual Int32 GetHashCode() const;

    /// The fully qualified name of the class; classes with a value override it.
    virtual String ToString() const;

    /// Describes this object; the result must not outlive it.
    Type GetType() const;

protected:
    Object() = default;
    Object(const Object&) = default;
    Object(Object&&) = default;
    Object& operator=(const Object&) = default;
    Object& operator=(Object&&) = default;
};
} // namespace Nfx::System
