#include "system/Error.h"

#include "system/Boolean.h"
#include "system/Convert.h"
#include "system/ErrorTable.h"
#include "system/Exceptions.h"
#include "system/TypeCode.h"

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Error";

std::int32_t Validated(std::int32_t code)
{
    if (ErrorTable::Find(code) == nullptr)
    {
        throw Exception(ErrorCodes::InvalidParameterValue, SourceName, 388);
    }
    return code;
}

const Error& NotNull(const Error* source)
{
    if (source == nullptr)
    {
        throw Exception(ErrorCodes::ParameterIsNull, SourceName, 42);
    }
    return *source;
}
} // namespace

Error::Error(std::int32_t code)
    : code(Validated(code))
{
}

Error::Error(const Error* source)
    : Error(NotNull(source))
{
}

Boolean Error::Equals(const Object* object) const
{
    const Error* other = dynamic_cast<const Error*>(object);
    return other != nullptr && other->code == code;
}

Int32 Error::GetHashCode() const
{
    return code;
}

String Error::ToString() const
{
    const char* const text = ErrorTable::Find(code);
    return text != nullptr ? String(text) : "Error " + Convert::ToHexadecimal(code);
}

Int32 Error::CompareTo(const Object* object) const
{
    if (object == nullptr)
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    const Error* other = dynamic_cast<const Error*>(object);
    if (other == nullptr)
    {
        throw ArgumentException(SourceName, __LINE__);
    }
    return code < other->code ? -1 : (code > other->code ? 1 : 0);
}

TypeCode Error::GetTypeCode() const
{
    return TypeCode::Int32;
}

Int32 Error::ToInt32() const
{
    return code;
}
} // namespace Nfx::System
