#include "Programs/PrivateFile.h"

#include <system_error>
#include <windows.h>

namespace Zent::Discovery::Programs
{
namespace
{
// What lies in the profile of a user is that user's alone, so files need no rights of their own.

HANDLE Open(const std::filesystem::path& path, DWORD access)
{
    return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

[[noreturn]] void Throw(DWORD error)
{
    throw std::system_error(static_cast<int>(error), std::system_category());
}
} // namespace

void PrivateFile::Append(const std::filesystem::path& path, std::string_view text)
{
    const HANDLE file = Open(path, FILE_APPEND_DATA);
    if (file == INVALID_HANDLE_VALUE)
    {
        Throw(GetLastError());
    }
    DWORD written = 0;
    const bool isDone =
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) && FlushFileBuffers(file);
    const DWORD error = isDone ? ERROR_SUCCESS : GetLastError();
    CloseHandle(file);
    if (error != ERROR_SUCCESS || written != text.size())
    {
        Throw(error == ERROR_SUCCESS ? ERROR_DISK_FULL : error);
    }
}

void PrivateFile::CreateLike(const std::filesystem::path& path, const std::filesystem::path& other)
{
    Append(path, "");
    std::filesystem::permissions(path, std::filesystem::status(other).permissions());
}

FileLock::FileLock(const std::filesystem::path& path)
    : handle(reinterpret_cast<std::intptr_t>(Open(path, GENERIC_READ | GENERIC_WRITE)))
{
    const HANDLE file = reinterpret_cast<HANDLE>(handle);
    if (file == INVALID_HANDLE_VALUE)
    {
        Throw(GetLastError());
    }
    OVERLAPPED place = {};
    if (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place) == 0)
    {
        const DWORD error = GetLastError();
        CloseHandle(file);
        Throw(error);
    }
}

FileLock::~FileLock()
{
    CloseHandle(reinterpret_cast<HANDLE>(handle)); // unlocks it
}
} // namespace Zent::Discovery::Programs
