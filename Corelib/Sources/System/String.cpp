#include "system/String.h"

#include "system/Boolean.h"
#include "system/Collections/Generic/List.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/StringSplitOptions.h"

#include <functional>

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/String";

const char* NotNull(const char* text)
{
    if (text == nullptr)
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    return text;
}
} // namespace

String::String(const char* text)
    : text(NotNull(text))
{
}

Boolean String::Equals(const Object* object) const
{
    const String* other = dynamic_cast<const String*>(object);
    return other != nullptr && other->text == text;
}

Int32 String::GetHashCode() const
{
    return static_cast<std::int32_t>(std::hash<std::string>{}(text));
}

String String::ToString() const
{
    return *this;
}

String String::Quoted(std::string_view text)
{
    constexpr std::size_t Longest = 64;
    const bool isCut = text.size() > Longest;
    return "\"" + String(text.substr(0, Longest)) + (isCut ? "...\"" : "\"");
}

Collections::Generic::List<String> String::Split(char separator, const StringSplitOptions& options) const
{
    Collections::Generic::List<String> parts;
    std::string_view rest = text;
    for (bool more = true; more;)
    {
        const std::size_t end = rest.find(separator);
        more = end != std::string_view::npos;
        const std::string_view part = rest.substr(0, end);
        if (!part.empty() || options != StringSplitOptions::RemoveEmptyEntries)
        {
            parts.Add(String(part));
        }
        rest.remove_prefix(more ? end + 1 : rest.size());
    }
    return parts;
}
} // namespace Nfx::System
