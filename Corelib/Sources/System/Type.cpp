#include "system/Type.h"

#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/String.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string_view>

namespace Nfx::System
{
namespace
{
std::string_view WithoutKeyword(std::string_view name)
{
    for (const std::string_view keyword : {"class ", "struct ", "union ", "enum "})
    {
        if (name.starts_with(keyword))
        {
            return name.substr(keyword.size());
        }
    }
    return name;
}
} // namespace

Type::Type(const Object& object)
    : described(object)
{
}

Boolean Type::Equals(const Object* object) const
{
    const Type* other = dynamic_cast<const Type*>(object);
    return other != nullptr && typeid(other->described) == typeid(described);
}

String Type::ToString() const
{
    return NameOf(typeid(described));
}

String Type::NameOf(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    return String(WithoutKeyword(status == 0 && name != nullptr ? name.get() : type.name()));
}
} // namespace Nfx::System
