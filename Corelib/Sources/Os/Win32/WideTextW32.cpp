#include "Os/Win32/WideTextW32.h"

#include "Os/Win32/PlatformW32.h"
#include "system/String.h"

namespace Nfx::Os
{
namespace
{
std::wstring Decode(UINT codePage, DWORD flags, std::string_view text)
{
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
    return wide;
}
} // namespace

std::wstring ToWideText(const System::String& text)
{
    std::wstring wide = Decode(CP_UTF8, MB_ERR_INVALID_CHARS, text.View()); // empty when it is not UTF-8
    return wide.empty() ? Decode(CP_ACP, 0, text.View()) : wide;
}

System::String FromWideText(std::wstring_view text)
{
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
    return System::String(std::move(bytes));
}
} // namespace Nfx::Os
