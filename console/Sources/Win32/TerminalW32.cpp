#include "Terminal/Terminal.h"

#include <windows.h>

namespace Zent::Discovery::Console
{
namespace
{
HANDLE HandleOf(Terminal::Stream stream)
{
    return GetStdHandle(stream == Terminal::Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// Whether the console acts on control sequences, as not every one does that takes the mode for them: a sequence
/// without effect must not move the cursor.
bool ActsOnSequences(HANDLE console)
{
    static constexpr wchar_t Reset[] = L"\x1B[0m";
    constexpr DWORD Length = 4;
    CONSOLE_SCREEN_BUFFER_INFO before{};
    CONSOLE_SCREEN_BUFFER_INFO after{};
    DWORD written = 0;
    if (!GetConsoleScreenBufferInfo(console, &before) || !WriteConsoleW(console, Reset, Length, &written, nullptr) ||
        !GetConsoleScreenBufferInfo(console, &after))
    {
        return false;
    }
    const COORD place = before.dwCursorPosition;
    if (after.dwCursorPosition.X == place.X && after.dwCursorPosition.Y == place.Y)
    {
        return true;
    }
    FillConsoleOutputCharacterW(console, L' ', Length, place, &written);
    SetConsoleCursorPosition(console, place);
    return false;
}
} // namespace

Terminal::Terminal(Stream stream)
    : stream(stream)
{
    DWORD mode = 0;
    if (GetConsoleMode(HandleOf(stream), &mode))
    {
        formerMode = mode;
        hasMode = true;
        // Systems before Windows 10 refuse: their consoles know no control sequences.
        isInteractive =
            SetConsoleMode(HandleOf(stream), mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) &&
            ActsOnSequences(HandleOf(stream));
    }
}

Terminal::~Terminal()
{
    if (hasMode)
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
