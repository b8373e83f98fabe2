#include "Terminal/HostPlatform.h"

#include "Programs/Process.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/auxv.h>
#include <sys/capability.h>
#include <sys/stat.h>
#include <sys/utsname.h>
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

/// What the program keeps of its own; empty where users have no folder.
std::filesystem::path StateFolder()
{
    std::filesystem::path folder = HostPlatform::EnvironmentVariable("XDG_STATE_HOME");
    if (!folder.is_absolute())
    {
        const std::filesystem::path home = HostPlatform::EnvironmentVariable("HOME");
        if (!home.is_absolute())
        {
            return {};
        }
        folder = home / ".local" / "state";
    }
    return folder / "discovery-console";
}
} // namespace

std::string HostPlatform::DefaultLibraryPath()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix = program.parent_path().parent_path();
    const std::filesystem::path installed = prefix / NFX_INSTALLED_LIBRARY;
    return std::filesystem::exists(installed) ? installed : prefix / "lib" / installed.filename(); // in a build folder
}

void HostPlatform::KeepRightsOnlyFor(const std::string& library)
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

std::string HostPlatform::DefaultLogPath()
{
    const std::filesystem::path folder = StateFolder();
    return folder.empty() ? Programs::Process::NullDevice() : (folder / "discovery-console.log").string();
}

std::string HostPlatform::DefaultJournalPath()
{
    const std::filesystem::path folder = StateFolder();
    return folder.empty() ? "" : (folder / "changes.jsonl").string();
}

std::string HostPlatform::TimeOfDay(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[16];
    return {text, std::strftime(text, sizeof(text), "%H:%M:%S", &local)};
}

std::string HostPlatform::SystemVersion()
{
    utsname names{};
    uname(&names);
    std::string distribution;
    std::ifstream file("/etc/os-release");
    for (std::string line; std::getline(file, line);)
    {
        if (line.starts_with("PRETTY_NAME="))
        {
            distribution = ", " + line.substr(line.find('=') + 1);
        }
    }
    return std::string(names.sysname) + ' ' + names.release + ' ' + names.machine + distribution;
}

std::vector<std::string> HostPlatform::OwnNames()
{
    utsname names{};
    uname(&names);
    std::vector<std::string> own = {names.nodename};
    for (const char* const variable : {"USER", "LOGNAME", "SUDO_USER"})
    {
        if (const std::string name = EnvironmentVariable(variable); name != "root") // who is called so everywhere
        {
            own.push_back(name);
        }
    }
    return own;
}

std::string HostPlatform::EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
    return value == nullptr ? "" : value;
}
} // namespace Zent::Discovery::Console
