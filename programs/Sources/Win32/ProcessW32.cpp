#include "Programs/Process.h"

#include "Win32/TextW32.h"

// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <memory>

namespace Zent::Discovery::Programs
{
std::vector<std::string> Process::Arguments(int /*count*/, const char* const* /*values*/)
{
    // The arguments of main have lost what the ANSI code page cannot express.
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> values(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; values != nullptr && i < count; ++i)
    {
        arguments.push_back(TextW32::Utf8(values.get()[i]));
    }
    return arguments;
}

std::string Process::NullDevice()
{
    return "NUL";
}

void Process::PrepareStreams()
{
    SetConsoleOutputCP(CP_UTF8);
}

std::size_t Process::ReadSome(std::span<char> buffer)
{
    DWORD size = 0;
    const BOOL isRead =
        ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr);
    return isRead ? size : 0;
}
} // namespace Zent::Discovery::Programs
