#include "Programs/Process.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace Zent::Discovery::Programs
{
std::vector<std::string> Process::Arguments(int count, const char* const* values)
{
    return {values + (count > 0 ? 1 : 0), values + count};
}

void Process::PrepareStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void Process::WaitForEndOfInput()
{
    char buffer[256];
    ssize_t size = 0;
    do
    {
        size = read(STDIN_FILENO, buffer, sizeof(buffer));
    } while (size > 0 || (size < 0 && errno == EINTR));
}
} // namespace Zent::Discovery::Programs
