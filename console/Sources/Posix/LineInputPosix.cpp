#include "Terminal/LineInput.h"

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
} // namespace Zent::Discovery::Console
