#include "Os/Win32/FileW32.h"

#include "Os/Win32/FileFailureW32.h"
#include "Os/Win32/PlatformW32.h"
#include "Os/Win32/WideTextW32.h"
#include "system/String.h"

#include <algorithm>
#include <string>

namespace Nfx::Os
{
namespace
{
constexpr std::size_t LargestWrite = 64 * 1024 * 1024; // more in one call the redirector of a network drive refuses

HANDLE HandleOf(IFile::Handle file)
{
    return reinterpret_cast<HANDLE>(file); // the number came from a HANDLE
}
} // namespace

FileResult FileW32::OpenToAppend(const System::String& path, Handle& file)
{
    // Without the right to write elsewhere each write goes to the end of the file, wherever that is by then.
    const HANDLE opened = CreateFileW(ToWideText(path).c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return LastFileFailureW32();
    }
    file = reinterpret_cast<Handle>(opened);
    return {};
}

FileResult FileW32::Write(Handle file, const char* bytes, std::size_t size, std::size_t& written)
{
    DWORD count = 0;
    const BOOL succeeded =
        WriteFile(HandleOf(file), bytes, static_cast<DWORD>(std::min(size, LargestWrite)), &count, nullptr);
    written = count;
    return succeeded ? FileResult() : LastFileFailureW32();
}

FileResult FileW32::Query(Handle file, Properties& properties)
{
    properties.IsRegular = GetFileType(HandleOf(file)) == FILE_TYPE_DISK;
    if (!properties.IsRegular)
    {
        properties.Size = 0;
        return {};
    }
    LARGE_INTEGER size;
    if (!GetFileSizeEx(HandleOf(file), &size))
    {
        return LastFileFailureW32();
    }
    properties.Size = size.QuadPart;
    return {};
}

void FileW32::Close(Handle file)
{
    CloseHandle(HandleOf(file));
}

bool FileW32::Exists(const System::String& path)
{
    return GetFileAttributesW(ToWideText(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

FileResult FileW32::Rename(const System::String& path, const System::String& newPath)
{
    if (!MoveFileExW(ToWideText(path).c_str(), ToWideText(newPath).c_str(), MOVEFILE_REPLACE_EXISTING))
    {
        return LastFileFailureW32();
    }
    return {};
}

std::string_view FileW32::LineEnd()
{
    return "\r\n";
}

System::String FileW32::Describe(std::int32_t nativeError)
{
    wchar_t text[512];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(nativeError), 0, text, sizeof text / sizeof text[0], nullptr);
    const std::wstring_view all(text, length);
    const std::size_t last = all.find_last_not_of(L". \r\n");
    if (last == std::wstring_view::npos)
    {
        return ("error " + std::to_string(nativeError)).c_str();
    }
    return FromWideText(all.substr(0, last + 1));
}
} // namespace Nfx::Os
