#include "Terminal.h"

#include <windows.h>

namespace Zent::Discovery::Console
{
namespace
{
HANDLE HandleOf(Terminal::Stream stream)
{
    return GetStdHandle(stream == Terminal::Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}
} // namespace

Terminal::Terminal(Stream stream)
    : stream(stream)
{
    DWORD mode = 0;
    if (GetConsoleMode(HandleOf(stream), &mode))
    {
        formerMode = mode;
        // Systems before Windows 10 refuse: their consoles know no control sequences.
        isInteractive =
            SetConsoleMode(HandleOf(stream), mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    }
}

Terminal::~Terminal()
{
    if (isInteractive)
    {
        SetConsoleMode(HandleOf(stream), formerMode);
    }
}

bool Terminal::IsInteractive() const
{
    return isInteractive;
}

Terminal::Dimensions Terminal::Size() const
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(HandleOf(stream), &info))
    {
        return {80, 24};
    }
    return {static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1),
            static_cast<std::size_t>(info.srWindow.Bottom - info.srWindow.Top + 1)};
}

void Terminal::RestoreWhenSuspended(const char* /*leave*/, const char* /*enter*/)
{
    // Users of Windows cannot suspend a program.
}
} // namespace Zent::Discovery::Console
