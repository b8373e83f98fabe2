#include "Programs/Interruption.h"

#include <atomic>
#include <utility>
#include <windows.h>

namespace Zent::Discovery::Programs
{
/// The system calls the handler on a thread that it makes for the event.
class Interruption::Watcher final
{
public:
    explicit Watcher(std::function<void()> onInterrupt)
        : onInterrupt(std::move(onInterrupt))
        , tidiedUp(CreateEventW(nullptr, TRUE, FALSE, nullptr))
    {
        current = this;
        SetConsoleCtrlHandler(&Handle, TRUE);
    }

    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    /// Lets a handler that holds up the end of the process return.
    void TidiedUp() { SetEvent(tidiedUp); }

private:
    static BOOL WINAPI Handle(DWORD event)
    {
        Watcher& watcher = *current.load();
        if (isAtOnce || watcher.interrupted.exchange(true))
        {
            return FALSE; // the next handler ends the process
        }
        watcher.onInterrupt();
        if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        {
            WaitForSingleObject(watcher.tidiedUp, INFINITE); // the system ends the process when this handler returns
        }
        return TRUE;
    }

    static std::atomic<Watcher*> current; // set before the handler is installed

    const std::function<void()> onInterrupt;
    const HANDLE tidiedUp;
    std::atomic<bool> interrupted{false}; // written by the handler's threads
};

std::atomic<Interruption::Watcher*> Interruption::Watcher::current{nullptr};

Interruption::Interruption(std::function<void()> onInterrupt)
    : watcher(std::make_unique<Watcher>(std::move(onInterrupt)))
{
}

Interruption::~Interruption()
{
    watcher->TidiedUp();
    static_cast<void>(watcher.release()); // a handler may still run, or come yet
}
} // namespace Zent::Discovery::Programs
