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

std::string Process::NullDevice()
{
    return "/dev/null";
}

void Process::PrepareStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
}

std::size_t Process::ReadSome(std::span<char> buffer)
{
    std::signal(SIGTTIN, SIG_IGN); // in the background of a terminal, reading fails instead of stopping the process
    ssize_t size = 0;
    do
    {
        size = read(STDIN_FILENO, buffer.data(), buffer.size());
    } while (size < 0 && errno == EINTR);
    return size > 0 ? static_cast<std::size_t>(size) : 0;
}
} // namespace Zent::Discovery::Programs
