#include "Os/Win32/ObjectNameW32.h"

#include "Os/Win32/PlatformW32.h"

namespace Nfx::Os
{
namespace
{
bool Convert(std::string_view name, UINT codePage, DWORD flags, wchar_t* text)
{
    return MultiByteToWideChar(codePage, flags, name.data(), static_cast<int>(name.size()), text,
                               static_cast<int>(LongestObjectName)) != 0;
}
} // namespace

ObjectNameW32::ObjectNameW32(std::string_view name)
    : isEmpty(name.empty())
{
    if (name.size() > LongestObjectName)
    {
        status = CreateStatus::NameTooLong;
    }
    else if (name.find('\0') != std::string_view::npos ||
             (!isEmpty && !Convert(name, CP_UTF8, MB_ERR_INVALID_CHARS, text) && !Convert(name, CP_ACP, 0, text)))
    {
        status = CreateStatus::Failed;
    }
}

CreateStatus ObjectNameW32::Status() const noexcept
{
    return status;
}

const wchar_t* ObjectNameW32::Text() const noexcept
{
    return isEmpty ? nullptr : text;
}
} // namespace Nfx::Os
