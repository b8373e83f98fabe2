#include "Terminal/LineInput.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace Zent::Discovery::Console
{
bool LineInput::IsSomebodyThere()
{
    // A program in the background would be suspended by its question.
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1 && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

void LineInput::DropTyped()
{
    if (IsSomebodyThere())
    {
        tcflush(STDIN_FILENO, TCIFLUSH);
    }
}

bool LineInput::HasHungUp()
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLHUP) != 0;
}
} // namespace Zent::Discovery::Console
