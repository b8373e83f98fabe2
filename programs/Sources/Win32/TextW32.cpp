#include "Win32/TextW32.h"

#include <windows.h>

namespace Zent::Discovery::Programs
{
std::string TextW32::Utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr); // the NUL counts
    if (size <= 0)
    {
        return "";
    }
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back();
    return result;
}
} // namespace Zent::Discovery::Programs
