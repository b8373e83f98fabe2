#include "Terminal/HostPlatform.h"

#include "Programs/Process.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sys/utsname.h>

namespace Zent::Discovery::Console
{
namespace
{
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
