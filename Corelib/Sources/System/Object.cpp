#include "system/Object.h"

#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/String.h"
#include "system/Type.h"

#include <cstdint>

namespace Nfx::System
{
Object::~Object() = default;

Boolean Object::Equals(const Object* object) const
{
    return object == this;
}

Int32 Object::GetHashCode() const
{
    const auto address = static_cast<std::int32_t>(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this)));
    return address < 0 ? ~address : address;
}

String Object::ToString() const
{
    return GetType().ToString();
}

Type Object::GetType() const
{
    return Type(*this);
}
} // namespace Nfx::System
