#include "system/Version.h"

#include "system/Boolean.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/String.h"

#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>
#include <system_error>

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Version";

/// Takes one number of 0 to 2147483647 off the front of the text; false when there is none.
bool TakeComponent(std::string_view& text, std::int32_t& component)
{
    std::uint32_t number = 0; // of an unsigned type, so that a sign is refused
    const std::from_chars_result end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc() || number > std::uint32_t{std::numeric_limits<std::int32_t>::max()})
    {
        return false;
    }
    component = static_cast<std::int32_t>(number);
    text.remove_prefix(static_cast<std::size_t>(end.ptr - text.data()));
    return true;
}

bool TakeDot(std::string_view& text)
{
    const bool found = text.starts_with('.');
    text.remove_prefix(found ? 1 : 0);
    return found;
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
    std::string_view rest = text.View();
    std::int32_t components[4] = {0, 0, Undefined, Undefined};
    std::size_t count = 0;
    bool valid = true;
    while (valid && count < 4 && (count < 2 || !rest.empty()))
    {
        valid = (count == 0 || TakeDot(rest)) && TakeComponent(rest, components[count]);
        ++count;
    }
    if (!valid || !rest.empty())
    {
        throw Exception(ErrorCodes::InvalidFormat, "no version : " + text.Quoted(), SourceName, __LINE__);
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
