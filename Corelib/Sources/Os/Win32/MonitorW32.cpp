#include "Os/Win32/MonitorW32.h"

#include "Os/Win32/PlatformW32.h"

#include <atomic>
#include <new>

namespace Nfx::Os
{
// Some systems hand a critical section over to a waiter, who may be suspended for long or terminated. Here a waiter
// never owns the lock before it runs.
class MonitorRecord final
{
public:
    enum : int
    {
        Free,
        Held,
        HeldAndWanted // whoever exits must wake a waiter
    };

    ~MonitorRecord()
    {
        if (freed != nullptr)
        {
            CloseHandle(freed);
        }
    }

    void Enter()
    {
        int expected = Free;
        if (!state.compare_exchange_strong(expected, Held, std::memory_order_acquire, std::memory_order_relaxed))
        {
            Wait();
        }
    }

    void Exit()
    {
        if (state.exchange(Free, std::memory_order_acq_rel) == HeldAndWanted)
        {
            const HANDLE event = freed.load(std::memory_order_acquire);
            if (event != nullptr)
            {
                SetEvent(event);
            }
        }
    }

private:
    void Wait()
    {
        const HANDLE event = FreedEvent(); // first: whoever finds the lock wanted must find the event too
        while (state.exchange(HeldAndWanted, std::memory_order_acq_rel) != Free)
        {
            if (event != nullptr)
            {
                WaitForSingleObject(event, INFINITE);
            }
            else
            {
                Sleep(1); // no handle to be had just now: look again
            }
        }
    }

    // Most locks are never waited for and need no handle.
    HANDLE FreedEvent()
    {
        HANDLE event = freed.load(std::memory_order_acquire);
        if (event == nullptr)
        {
            const HANDLE created = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            if (freed.compare_exchange_strong(event, created, std::memory_order_acq_rel))
            {
                return created;
            }
            if (created != nullptr)
            {
                CloseHandle(created);
            }
        }
        return event;
    }

    std::atomic<int> state{Free};
    std::atomic<HANDLE> freed{nullptr}; // set to wake one waiter; created by the first one
};

void MonitorW32::Close(MonitorRecord* monitor)
{
    delete monitor;
}

MonitorRecord* MonitorW32::Create()
{
    return new (std::nothrow) MonitorRecord();
}

void MonitorW32::Enter(MonitorRecord* monitor)
{
    monitor->Enter();
}

void MonitorW32::Exit(MonitorRecord* monitor)
{
    monitor->Exit();
}
} // namespace Nfx::Os
