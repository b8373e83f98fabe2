#include "Os/Posix/FileFailurePosix.h"

#include "system/String.h"

#include <cerrno>
#include <string>
#include <sys/stat.h>

namespace Nfx::Os
{
namespace
{
bool IsFolderMissing(const System::String& path)
{
    const std::string text(path.View());
    const std::size_t end = text.rfind('/');
    if (end == std::string::npos || end == 0)
    {
        return false;
    }
    struct stat properties;
    return stat(text.substr(0, end).c_str(), &properties) != 0 || !S_ISDIR(properties.st_mode);
}
} // namespace

FileResult FileFailurePosix(int number, const System::String& path)
{
    switch (number)
    {
    case ENOENT:
        return {IsFolderMissing(path) ? FileFailure::DirectoryNotFound : FileFailure::FileNotFound, number};
    case ENOTDIR:
        return {FileFailure::DirectoryNotFound, number};
    case EFBIG:
        return {FileFailure::TooLarge, number};
    default:
        return {FileFailure::Other, number};
    }
}
} // namespace Nfx::Os
