#include "system/Boolean.h"

#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/String.h"

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Boolean";
} // namespace

Boolean Boolean::Equals(const Object* object) const
{
    const Boolean* other = dynamic_cast<const Boolean*>(object);
    return other != nullptr && other->value == value;
}

Int32 Boolean::GetHashCode() const
{
    return value ? 1 : 0;
}

String Boolean::ToString() const
{
    return value ? "True" : "False";
}

Boolean Boolean::Parse(const String& text)
{
    Boolean result;
    if (!TryParse(text, result))
    {
        throw Exception(ErrorCodes::InvalidFormat, "neither True nor False : " + text.Quoted(), SourceName, __LINE__);
    }
    return result;
}

bool Boolean::TryParse(const String& text, Boolean& result)
{
    if (text == "True" || text == "False")
    {
        result = text == "True";
        return true;
    }
    return false;
}
} // namespace Nfx::System
