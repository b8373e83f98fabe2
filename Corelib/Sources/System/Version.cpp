#include "system/Version.h"

#include "system/Boolean.h"
#include "system/Collections/Generic/List.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/String.h"
#include "system/StringSplitOptions.h"

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Version";

std::int32_t ParseComponent(const String& text)
{
    const std::int32_t component = Int32::Parse(text);
    if (text.View().front() == '-')
    {
        throw Exception(ErrorCodes::InvalidFormat, "no version component : " + text.Quoted(), SourceName, __LINE__);
    }
    return component;
}
} // namespace

Version::Version(std::int32_t major, std::int32_t minor, std::int32_t build, std::int32_t revision)
    : major(major)
    , minor(minor)
    , build(build)
    , revision(revision)
{
    const bool inRange = major >= 0 && minor >= 0 && build >= Undefined && revision >= Undefined;
    if (!inRange || (build == Undefined && revision != Undefined))
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
}

Boolean Version::Equals(const Object* object) const
{
    const Version* other = dynamic_cast<const Version*>(object);
    return other != nullptr && *other == *this;
}

Int32 Version::GetHashCode() const
{
    return ToString().GetHashCode();
}

String Version::ToString() const
{
    String text = Int32(major).ToString() + "." + Int32(minor).ToString();
    for (const std::int32_t component : {build, revision})
    {
        if (component != Undefined)
        {
            text += "." + Int32(component).ToString();
        }
    }
    return text;
}

Version Version::Parse(const String& text)
{
    const Collections::Generic::List<String> parts = text.Split('.', StringSplitOptions::None);
    if (parts.Count() < 2 || parts.Count() > 4)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no version : " + text.Quoted(), SourceName, __LINE__);
    }
    std::int32_t components[4] = {0, 0, Undefined, Undefined};
    for (std::int32_t index = 0; index < parts.Count(); ++index)
    {
        components[index] = ParseComponent(parts[index]);
    }
    return Version(components[0], components[1], components[2], components[3]);
}

std::strong_ordering operator<=>(const Version& left, const Version& right) noexcept
{
    const std::int32_t ours[] = {left.major, left.minor, left.build, left.revision};
    const std::int32_t theirs[] = {right.major, right.minor, right.build, right.revision};
    for (int index = 0; index < 4; ++index)
    {
        if (ours[index] != theirs[index])
        {
            return ours[index] <=> theirs[index];
        }
    }
    return std::strong_ordering::equal;
}
} // namespace Nfx::System
