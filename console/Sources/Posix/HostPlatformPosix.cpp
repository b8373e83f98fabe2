#include "Terminal/HostPlatform.h"

#include "Programs/Process.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace Zent::Discovery::Console
{
std::string HostPlatform::DefaultLibraryPath()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix = program.parent_path().parent_path();
    const std::filesystem::path installed = prefix / NFX_INSTALLED_LIBRARY;
    return std::filesystem::exists(installed) ? installed : prefix / "lib" / installed.filename(); // in a build folder
}

std::string HostPlatform::DefaultLogPath()
{
    std::filesystem::path folder = EnvironmentVariable("XDG_STATE_HOME");
    if (!folder.is_absolute())
    {
        const std::filesystem::path home = EnvironmentVariable("HOME");
        if (!home.is_absolute())
        {
            return Programs::Process::NullDevice();
        }
        folder = home / ".local" / "state";
    }
    return folder / "discovery-console" / "discovery-console.log";
}

std::string HostPlatform::TimeOfDay(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[16];
    return {text, std::strftime(text, sizeof(text), "%H:%M:%S", &local)};
}

std::string HostPlatform::EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
    return value == nullptr ? "" : value;
}
} // namespace Zent::Discovery::Console
