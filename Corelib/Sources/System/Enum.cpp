#include "system/Enum.h"

#include "system/Exceptions.h"

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Enum";
} // namespace

Int32 EnumBase::GetHashCode() const
{
    return value;
}

const char* EnumBase::FindName(std::span<const EnumName> names, std::int32_t value) noexcept
{
    for (const EnumName& row : names)
    {
        if (row.Value == value)
        {
            return row.Name;
        }
    }
    return nullptr;
}

const EnumName* EnumBase::FindValue(std::span<const EnumName> names, const String& name) noexcept
{
    for (const EnumName& row : names)
    {
        if (name == row.Name)
        {
            return &row;
        }
    }
    return nullptr;
}

String EnumBase::TextOf(std::span<const EnumName> names, std::int32_t value)
{
    const char* const name = FindName(names, value);
    return name != nullptr ? String(name) : Int32(value).ToString();
}

std::int32_t EnumBase::ParseName(std::span<const EnumName> names, const String& name)
{
    const EnumName* const row = FindValue(names, name);
    if (row == nullptr)
    {
        throw Exception(ErrorCodes::InvalidFormat, "no such name : " + name.Quoted(), SourceName, __LINE__);
    }
    return row->Value;
}
} // namespace Nfx::System
