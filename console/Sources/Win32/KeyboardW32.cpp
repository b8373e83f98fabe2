#include "Terminal/Keyboard.h"

#include <iterator>
#include <thread>
#include <utility>
#include <windows.h>

namespace Zent::Discovery::Console
{
namespace
{
/// As a terminal sends it; empty for any other key.
std::string TextOf(const KEY_EVENT_RECORD& event)
{
    switch (event.wVirtualKeyCode)
    {
    case VK_UP:
        return "\x1B[A";
    case VK_DOWN:
        return "\x1B[B";
    case VK_PRIOR:
        return "\x1B[5~";
    case VK_NEXT:
        return "\x1B[6~";
    case VK_HOME:
        return "\x1B[H";
    case VK_END:
        return "\x1B[F";
    default:
        return std::string(1, event.uChar.AsciiChar);
    }
}
} // namespace

class Keyboard::System final
{
public:
    explicit System(std::function<void(Key)> onKey)
        : onKey(std::move(onKey))
    {
        DWORD mode = 0;
        if (GetConsoleMode(input, &mode))
        {
            reader = std::thread([this] { Read(); });
        }
    }

    System(const System&) = delete;
    System& operator=(const System&) = delete;

    ~System()
    {
        SetEvent(ending);
        if (reader.joinable())
        {
            reader.join();
        }
        CloseHandle(ending);
    }

private:
    void Read()
    {
        const HANDLE events[] = {ending, input};
        while (WaitForMultipleObjects(static_cast<DWORD>(std::size(events)), events, FALSE, INFINITE) ==
               WAIT_OBJECT_0 + 1)
        {
            INPUT_RECORD record{};
            DWORD count = 0;
            if (!ReadConsoleInputW(input, &record, 1, &count))
            {
                return;
            }
            std::string text =
                record.EventType == KEY_EVENT && record.Event.KeyEvent.bKeyDown ? TextOf(record.Event.KeyEvent) : "";
            if (const std::optional<Key> key = Take(text))
            {
                onKey(*key);
            }
        }
    }

    const std::function<void(Key)> onKey;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    const HANDLE ending = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread reader;
};

Keyboard::Keyboard(std::function<void(Key)> onKey)
    : system(std::make_unique<System>(std::move(onKey)))
{
}

Keyboard::~Keyboard() = default;

void Keyboard::Renew()
{
    // Nobody else changes the console meanwhile.
}
} // namespace Zent::Discovery::Console
