#include "Terminal/ProgramRights.h"

#include "Terminal/HostPlatform.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <sys/auxv.h>
#include <sys/capability.h>
#include <sys/stat.h>
#include <system_error>

namespace Zent::Discovery::Console
{
namespace
{
/// Whether none but the administrator can put another file at this absolute path.
bool IsAdministrators(std::filesystem::path path)
{
    while (true)
    {
        struct stat status = {};
        if (lstat(path.c_str(), &status) != 0 || status.st_uid != 0)
        {
            return false;
        }
        const bool othersMayWrite = (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 && !S_ISLNK(status.st_mode);
        const bool othersMayReplace = !S_ISDIR(status.st_mode) || (status.st_mode & S_ISVTX) == 0;
        if (othersMayWrite && othersMayReplace)
        {
            return false;
        }
        if (path == path.root_path())
        {
            return true;
        }
        path = path.parent_path();
    }
}

/// A link to the library and what it links to must both be out of reach.
bool IsInstalled(const std::string& library)
{
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(library, error);
    return !error && library == HostPlatform::DefaultLibraryPath() && IsAdministrators(library) &&
           IsAdministrators(file);
}
} // namespace

void ProgramRights::KeepOnlyFor(const std::string& library)
{
    if (getauxval(AT_SECURE) == 0 || IsInstalled(library))
    {
        return;
    }
    const std::unique_ptr<void, int (*)(void*)> none(cap_init(), &cap_free);
    if (none == nullptr || cap_set_proc(static_cast<cap_t>(none.get())) != 0)
    {
        throw std::system_error(errno, std::generic_category(),
                                "cannot give up capabilities before loading " + library);
    }
}
} // namespace Zent::Discovery::Console
