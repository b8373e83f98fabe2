#include "Terminal/Keyboard.h"

#include <iterator>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Zent::Discovery::Console
{
class Keyboard::System final
{
public:
    explicit System(std::function<void(Key)> onKey)
        : onKey(std::move(onKey))
        , hasTerminal(tcgetattr(STDIN_FILENO, &former) == 0)
    {
        Renew();
        if (hasTerminal)
        {
            reader = std::thread([this] { Read(); });
        }
    }

    System(const System&) = delete;
    System& operator=(const System&) = delete;

    ~System()
    {
        eventfd_write(ending, 1);
        if (reader.joinable())
        {
            reader.join();
        }
        if (IsOurs())
        {
            tcsetattr(STDIN_FILENO, TCSANOW, &former);
        }
        close(ending);
    }

    void Renew()
    {
        if (IsOurs())
        {
            termios wanted = former;
            wanted.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
            tcsetattr(STDIN_FILENO, TCSANOW, &wanted);
        }
    }

private:
    /// The system suspends a program in the background that changes or reads the terminal.
    bool IsOurs() const { return hasTerminal && tcgetpgrp(STDIN_FILENO) == getpgrp(); }

    void Read()
    {
        std::string text;
        for (;;)
        {
            pollfd events[] = {{ending, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
            if (poll(events, std::size(events), -1) < 0)
            {
                continue; // a signal
            }
            char buffer[64];
            const ssize_t size = events[1].revents == 0 ? 0 : read(STDIN_FILENO, buffer, sizeof(buffer));
            if (events[0].revents != 0 || (events[1].revents != 0 && size <= 0))
            {
                return;
            }
            text.append(buffer, static_cast<std::size_t>(size));
            while (const std::optional<Key> key = Take(text))
            {
                onKey(*key);
            }
        }
    }

    const std::function<void(Key)> onKey;
    termios former{}; // constant once the thread runs
    const bool hasTerminal;
    const int ending = eventfd(0, EFD_CLOEXEC);
    std::thread reader;
};

Keyboard::Keyboard(std::function<void(Key)> onKey)
    : system(std::make_unique<System>(std::move(onKey)))
{
}

Keyboard::~Keyboard() = default;

void Keyboard::Renew()
{
    system->Renew();
}
} // namespace Zent::Discovery::Console
