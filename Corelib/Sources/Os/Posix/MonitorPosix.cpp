#include "Os/Posix/MonitorPosix.h"

#include "Os/Posix/DeadlinePosix.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <pthread.h>

namespace Nfx::Os
{
class MonitorRecord final
{
public:
    pthread_mutex_t Mutex = PTHREAD_MUTEX_INITIALIZER;
};

namespace
{
// The sanitizers know no timed lock but the one on the wall clock. Short rounds against the monotonic clock keep a wall
// clock that is set meanwhile from stretching the wait.
bool EnterWithin(pthread_mutex_t& mutex, std::int32_t timeout)
{
    using namespace std::chrono;
    constexpr milliseconds round(100);
    const auto end = steady_clock::now() + milliseconds(timeout);
    for (auto left = milliseconds(timeout); left.count() > 0; left = ceil<milliseconds>(end - steady_clock::now()))
    {
        const timespec deadline =
            DeadlineAfter(CLOCK_REALTIME, static_cast<std::int32_t>(std::min(left, round).count()));
        if (pthread_mutex_timedlock(&mutex, &deadline) == 0)
        {
            return true;
        }
    }
    return false;
}
} // namespace

void MonitorPosix::Close(MonitorRecord* monitor)
{
    pthread_mutex_destroy(&monitor->Mutex);
    delete monitor;
}

MonitorRecord* MonitorPosix::Create()
{
    return new (std::nothrow) MonitorRecord();
}

void MonitorPosix::Enter(MonitorRecord* monitor)
{
    pthread_mutex_lock(&monitor->Mutex);
}

void MonitorPosix::Exit(MonitorRecord* monitor)
{
    pthread_mutex_unlock(&monitor->Mutex);
}

bool MonitorPosix::TryEnter(MonitorRecord* monitor, std::int32_t timeout)
{
    if (timeout < 0)
    {
        pthread_mutex_lock(&monitor->Mutex);
        return true;
    }
    if (timeout == 0)
    {
        return pthread_mutex_trylock(&monitor->Mutex) == 0;
    }
    return EnterWithin(monitor->Mutex, timeout);
}
} // namespace Nfx::Os
