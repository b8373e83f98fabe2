#include "Os/Win32/DirectoryW32.h"

#include "Os/Win32/FileFailureW32.h"
#include "Os/Win32/PlatformW32.h"
#include "Os/Win32/WideTextW32.h"
#include "system/String.h"

#include <algorithm>

namespace Nfx::Os
{
namespace
{
bool IsSeparatorW32(char character)
{
    return character == '\\' || character == '/';
}

bool HasDriveAt(std::string_view path, std::size_t position)
{
    return path.size() >= position + 2 && path[position + 1] == ':' && !IsSeparatorW32(path[position]);
}

/// The position behind the next separator at or after start, or the end.
std::size_t BehindPart(std::string_view path, std::size_t start)
{
    const auto separator = std::find_if(path.begin() + static_cast<std::ptrdiff_t>(start), path.end(), IsSeparatorW32);
    return static_cast<std::size_t>(separator - path.begin()) + (separator == path.end() ? 0 : 1);
}
} // namespace

bool DirectoryW32::Exists(const System::String& path)
{
    const DWORD attributes = GetFileAttributesW(ToWideText(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

FileResult DirectoryW32::Create(const System::String& path)
{
    if (!CreateDirectoryW(ToWideText(path).c_str(), nullptr))
    {
        return LastFileFailureW32();
    }
    return {};
}

FileResult DirectoryW32::GetFullPath(const System::String& path, System::String& fullPath)
{
    const std::wstring wide = ToWideText(path);
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0'); // with the terminating NUL
    const DWORD length = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size())
    {
        return LastFileFailureW32();
    }
    full.resize(length);
    fullPath = FromWideText(full);
    return {};
}

bool DirectoryW32::IsSeparator(char character)
{
    return IsSeparatorW32(character);
}

std::size_t DirectoryW32::RootLength(std::string_view path)
{
    const bool isVerbatim = path.starts_with("\\\\?\\") || path.starts_with("\\\\.\\");
    const std::size_t start = isVerbatim ? 4 : 0;
    if (HasDriveAt(path, start))
    {
        return path.size() > start + 2 && IsSeparatorW32(path[start + 2]) ? start + 3 : start + 2;
    }
    if (isVerbatim)
    {
        const bool isShare = path.substr(start).starts_with("UNC\\");
        return isShare ? BehindPart(path, BehindPart(path, start + 4)) : BehindPart(path, start);
    }
    if (path.size() >= 2 && IsSeparatorW32(path[0]) && IsSeparatorW32(path[1]))
    {
        return BehindPart(path, BehindPart(path, 2));
    }
    return !path.empty() && IsSeparatorW32(path[0]) ? 1 : 0;
}
} // namespace Nfx::Os
