#include "Os/Posix/DirectoryPosix.h"

#include "Os/Posix/FileFailurePosix.h"
#include "system/String.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Nfx::Os
{
bool DirectoryPosix::Exists(const System::String& path)
{
    struct stat found;
    return stat(path.CString(), &found) == 0 && S_ISDIR(found.st_mode);
}

FileResult DirectoryPosix::Create(const System::String& path)
{
    if (mkdir(path.CString(), 0777) != 0)
    {
        return FileFailurePosix(errno, path);
    }
    return {};
}

FileResult DirectoryPosix::GetFullPath(const System::String& path, System::String& fullPath)
{
    if (RootLength(path.View()) > 0)
    {
        fullPath = path;
        return {};
    }
    const std::unique_ptr<char, void (*)(void*)> current(getcwd(nullptr, 0), std::free);
    if (current == nullptr)
    {
        return {FileFailure::DirectoryNotFound, errno};
    }
    fullPath = current.get();
    if (!fullPath.View().ends_with('/'))
    {
        fullPath.Append('/');
    }
    fullPath += path;
    return {};
}

bool DirectoryPosix::IsSeparator(char character)
{
    return character == '/';
}

std::size_t DirectoryPosix::RootLength(std::string_view path)
{
    return path.starts_with('/') ? 1 : 0;
}
} // namespace Nfx::Os
