#include "Terminal/Terminal.h"

#include "Terminal/HostPlatform.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Zent::Discovery::Console
{
namespace
{
int DescriptorOf(Terminal::Stream stream)
{
    return stream == Terminal::Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

// Set by the main thread before the handlers are installed, and read by the handlers on any thread.
std::atomic<const char*> leaveText{nullptr};
std::atomic<const char*> enterText{nullptr};

void WriteText(const char* text)
{
    if (text != nullptr)
    {
        // A handler can do nothing about a failure.
        [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text, std::strlen(text));
    }
}

void HandleSuspension(int /*number*/)
{
    const int error = errno;
    WriteText(leaveText);
    raise(SIGSTOP);
    errno = error;
}

void HandleContinuation(int /*number*/)
{
    const int error = errno;
    WriteText(enterText);
    errno = error;
}

void Handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}
} // namespace

Terminal::Terminal(Stream stream)
    : stream(stream)
    , isInteractive(isatty(DescriptorOf(stream)) == 1 && HostPlatform::EnvironmentVariable("TERM") != "dumb")
{
}

Terminal::~Terminal() = default;

bool Terminal::IsInteractive() const
{
    return isInteractive;
}

Terminal::Dimensions Terminal::Size() const
{
    winsize size{};
    if (ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
    {
        return {80, 24};
    }
    return {size.ws_col, size.ws_row};
}

void Terminal::RestoreWhenSuspended(const char* leave, const char* enter)
{
    const bool isWanted = leave != nullptr;
    if (isWanted)
    {
        leaveText = leave;
        enterText = enter;
    }
    Handle(SIGTSTP, isWanted ? &HandleSuspension : SIG_DFL);
    Handle(SIGCONT, isWanted ? &HandleContinuation : SIG_DFL);
}
} // namespace Zent::Discovery::Console
