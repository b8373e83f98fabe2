#include "Doctor/HostProbe.h"

#include "Doctor/WindowsRules.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>
#include <windows.h>

namespace Zent::Discovery::Console::Doctor
{
namespace
{
const char PolicyKey[] = R"(SYSTEM\CurrentControlSet\Services\SharedAccess\Parameters\FirewallPolicy)";

/// A registry key of the machine to read, or nothing when there is none such.
class Key final
{
public:
    explicit Key(const std::string& path)
    {
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ | KEY_WOW64_64KEY, &handle) != ERROR_SUCCESS)
        {
            handle = nullptr;
        }
    }

    ~Key()
    {
        if (handle != nullptr)
        {
            RegCloseKey(handle);
        }
    }

    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    bool IsSet(const char* name) const
    {
        DWORD value = 0;
        DWORD size = sizeof(value);
        return handle != nullptr &&
               RegQueryValueExA(handle, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size) ==
                   ERROR_SUCCESS &&
               value != 0;
    }

    std::vector<std::string> Texts() const
    {
        constexpr DWORD MaximumName = 16384; // the registry's own limit, with the NUL
        std::vector<std::string> texts;
        std::vector<char> name(MaximumName);
        std::vector<char> value(std::size_t{64} * 1024);
        for (DWORD index = 0; handle != nullptr; ++index)
        {
            DWORD nameSize = MaximumName;
            auto valueSize = static_cast<DWORD>(value.size());
            DWORD type = REG_NONE;
            const LSTATUS status = RegEnumValueA(handle, index, name.data(), &nameSize, nullptr, &type,
                                                 reinterpret_cast<BYTE*>(value.data()), &valueSize);
            if (status == ERROR_NO_MORE_ITEMS)
            {
                break;
            }
            if (status == ERROR_SUCCESS && type == REG_SZ)
            {
                texts.emplace_back(value.data(), strnlen(value.data(), valueSize));
            }
        }
        return texts;
    }

private:
    HKEY handle = nullptr;
};

std::string OwnPath()
{
    char path[MAX_PATH];
    return std::string(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
}
} // namespace

Observations::Systems HostProbe::System()
{
    return Observations::Systems::Windows;
}

FirewallState HostProbe::Firewall()
{
    bool isOn = false;
    for (const char* const profile : {"DomainProfile", "StandardProfile", "PublicProfile"})
    {
        isOn |= Key(std::string(PolicyKey) + "\\" + profile).IsSet("EnableFirewall");
    }
    return isOn ? WindowsRules::Judge(Key(std::string(PolicyKey) + "\\FirewallRules").Texts(), OwnPath())
                : FirewallState();
}

std::string HostProbe::MakePrivateFolder()
{
    // The folder for temporary files is the user's own.
    static std::atomic<unsigned> count{0};
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        ("discovery-doctor-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(count++));
    if (!CreateDirectoryW(folder.c_str(), nullptr))
    {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "cannot make the folder " + folder.string());
    }
    return folder.string();
}
} // namespace Zent::Discovery::Console::Doctor
