#include "Terminal/HostPlatform.h"

#include "Programs/Process.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <windows.h>

namespace Zent::Discovery::Console
{
namespace
{
std::string Utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::filesystem::path ProgramPath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(2 * path.size());
    }
}

/// What the program keeps of its own; empty where users have no folder.
std::filesystem::path StateFolder()
{
    const wchar_t* const local = _wgetenv(L"LOCALAPPDATA");
    return local == nullptr ? std::filesystem::path() : std::filesystem::path(local) / L"discovery-console";
}
} // namespace

std::string HostPlatform::DefaultLibraryPath()
{
    return Utf8(ProgramPath().replace_filename(L"DiscoveryServer.ExtC.dll"));
}

std::string HostPlatform::DefaultLogPath()
{
    const std::filesystem::path folder = StateFolder();
    return folder.empty() ? Programs::Process::NullDevice() : Utf8(folder / L"discovery-console.log");
}

std::string HostPlatform::DefaultJournalPath()
{
    const std::filesystem::path folder = StateFolder();
    return folder.empty() ? "" : Utf8(folder / L"changes.jsonl");
}

std::string HostPlatform::TimeOfDay(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_s(&local, &seconds);
    char text[16];
    return {text, std::strftime(text, sizeof(text), "%H:%M:%S", &local)};
}

std::string HostPlatform::SystemVersion()
{
    // What GetVersionEx tells depends on the program's manifest, the registry does not.
    const auto read = [](const wchar_t* name) {
        std::array<wchar_t, 128> text{};
        DWORD size = sizeof(text) - sizeof(wchar_t);
        RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", name, RRF_RT_REG_SZ,
                     nullptr, text.data(), &size);
        return Utf8(std::filesystem::path(text.data()));
    };
    return read(L"ProductName") + ", build " + read(L"CurrentBuildNumber");
}

std::vector<std::string> HostPlatform::OwnNames()
{
    std::vector<std::string> own;
    for (const wchar_t* const variable : {L"COMPUTERNAME", L"USERNAME", L"USERDOMAIN"})
    {
        if (const wchar_t* const name = _wgetenv(variable))
        {
            own.push_back(Utf8(std::filesystem::path(name)));
        }
    }
    return own;
}

std::string HostPlatform::EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}
} // namespace Zent::Discovery::Console
