#include "system/Threading/Monitor.h"

#include "Os/IMonitor.h"
#include "Os/IOs.h"
#include "system/Exceptions.h"

#include <atomic>
#include <cstdint>

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Monitor";

// Its address tells threads apart faster than asking the platform for an id.
thread_local const char threadIdentity = 0;
} // namespace

class Monitor::MonitorData final
{
public:
    MonitorData()
        : service(Os::Platform().Monitor())
        , lock(service.Create())
    {
        if (lock == nullptr)
        {
            throw OutOfMemoryException(SourceName, __LINE__);
        }
    }

    ~MonitorData() { service.Close(lock); }

    MonitorData(const MonitorData&) = delete;
    MonitorData& operator=(const MonitorData&) = delete;

    bool IsMine() const { return owner.load(std::memory_order_relaxed) == &threadIdentity; }

    void Enter()
    {
        if (!IsMine())
        {
            service.Enter(lock);
            owner.store(&threadIdentity, std::memory_order_relaxed);
        }
        ++entries;
    }

    void Exit()
    {
        if (--entries == 0)
        {
            owner.store(nullptr, std::memory_order_relaxed);
            service.Exit(lock);
        }
    }

private:
    Os::IMonitor& service;
    Os::MonitorRecord* const lock;
    std::atomic<const char*> owner{nullptr}; // written by the owner only; others just learn that it is not theirs
    std::int32_t entries = 0;                // guarded by lock
};

Monitor::Monitor()
    : data(new MonitorData())
{
}

Monitor::~Monitor() = default;

void Monitor::Enter()
{
    data->Enter();
}

void Monitor::Exit()
{
    if (!data->IsMine())
    {
        throw InvalidOperationException(SourceName, __LINE__);
    }
    data->Exit();
}
} // namespace Nfx::System::Threading
