#include "Programs/Process.h"

// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <memory>
#include <utility>

namespace Zent::Discovery::Programs
{
namespace
{
std::string Utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr); // the NUL counts
    if (size <= 0)
    {
        return "";
    }
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back();
    return result;
}
} // namespace

std::vector<std::string> Process::Arguments(int /*count*/, const char* const* /*values*/)
{
    // The arguments of main have lost what the ANSI code page cannot express.
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> values(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; values != nullptr && i < count; ++i)
    {
        arguments.push_back(Utf8(values.get()[i]));
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
