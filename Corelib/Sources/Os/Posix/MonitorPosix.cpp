#include "Os/Posix/MonitorPosix.h"

#include <new>
#include <pthread.h>

namespace Nfx::Os
{
class MonitorRecord final
{
public:
    pthread_mutex_t Mutex = PTHREAD_MUTEX_INITIALIZER;
};

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
} // namespace Nfx::Os
