#include "System/Threading/MonitorData.h"

#include "Os/IEvent.h"
#include "Os/IOs.h"
#include "System/Threading/ThreadData.h"
#include "system/Exceptions.h"

#include <memory>
#include <utility>

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/MonitorData";
}

class Monitor::MonitorData::Outside final
{
public:
    explicit Outside(MonitorData& monitor)
        : monitor(monitor)
        , entries(std::exchange(monitor.entries, 0))
    {
        monitor.LetGo();
    }

    ~Outside()
    {
        monitor.service.Enter(monitor.lock);
        monitor.TakeOver();
        monitor.entries = entries;
    }

    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

private:
    MonitorData& monitor;
    const std::int32_t entries;
};

class Monitor::MonitorData::Waiter final
{
public:
    explicit Waiter(MonitorData& monitor)
        : monitor(monitor)
    {
        Os::CreateStatus status{};
        if (!events.Create(pulse, false, false, {}, status))
        {
            throw IO::IOException(SourceName, __LINE__);
        }
        (monitor.lastWaiter != nullptr ? monitor.lastWaiter->next : monitor.firstWaiter) = this;
        previous = std::exchange(monitor.lastWaiter, this);
    }

    ~Waiter()
    {
        if (!isPulsed)
        {
            LeaveQueue();
        }
        events.Close(pulse);
    }

    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

    bool IsPulsed() const { return isPulsed; }

    /// Outside of the monitor.
    void WaitForPulse(std::int32_t timeout)
    {
        Thread::ThreadData::Block(timeout, [this](std::int32_t time) { return events.Wait(pulse, time); });
    }

    void Pulse()
    {
        LeaveQueue();
        isPulsed = true;
        events.Set(pulse);
    }

private:
    void LeaveQueue()
    {
        (previous != nullptr ? previous->next : monitor.firstWaiter) = next;
        (next != nullptr ? next->previous : monitor.lastWaiter) = previous;
    }

    MonitorData& monitor;
    Os::IEvent& events = Os::Platform().Event();
    Os::ObjectHandle pulse = 0;
    bool isPulsed = false;
    Waiter* next = nullptr;
    Waiter* previous = nullptr;
};

Monitor::MonitorData::MonitorData()
    : service(Os::Platform().Monitor())
    , threads(Os::Platform().Thread())
    , lock(service.Create())
{
    if (lock == nullptr)
    {
        throw OutOfMemoryException(SourceName, __LINE__);
    }
}

Monitor::MonitorData::~MonitorData()
{
    service.Close(lock);
}

bool Monitor::MonitorData::IsMine() const
{
    return owner.load(std::memory_order_relaxed) == static_cast<std::uintptr_t>(threads.CurrentThreadId());
}

void Monitor::MonitorData::Enter()
{
    if (!IsMine())
    {
        service.Enter(lock);
        TakeOver();
    }
    ++entries;
}

void Monitor::MonitorData::Exit()
{
    if (--entries == 0)
    {
        LetGo();
    }
}

bool Monitor::MonitorData::Wait(std::int32_t timeout)
{
    // Not on the stack: where a thread is ended by force its stack goes, but its place in the queue stays.
    const std::unique_ptr<Waiter> waiter(new Waiter(*this));
    try
    {
        const Outside outside(*this);
        waiter->WaitForPulse(timeout);
    }
    catch (...)
    {
        // What wakes this thread for another reason must not use up a pulse that others wait for.
        if (waiter->IsPulsed())
        {
            Pulse();
        }
        throw;
    }
    return waiter->IsPulsed();
}

void Monitor::MonitorData::Pulse()
{
    if (firstWaiter != nullptr)
    {
        firstWaiter->Pulse();
    }
}

void Monitor::MonitorData::PulseAll()
{
    while (firstWaiter != nullptr)
    {
        firstWaiter->Pulse();
    }
}

void Monitor::MonitorData::TakeOver()
{
    owner.store(static_cast<std::uintptr_t>(threads.CurrentThreadId()), std::memory_order_relaxed);
}

void Monitor::MonitorData::LetGo()
{
    owner.store(0, std::memory_order_relaxed);
    service.Exit(lock);
}
} // namespace Nfx::System::Threading
