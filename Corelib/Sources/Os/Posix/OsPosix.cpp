#include "Os/IOs.h"
#include "Os/Posix/DateTimePosix.h"
#include "Os/Posix/DirectoryPosix.h"
#include "Os/Posix/EventPosix.h"
#include "Os/Posix/FilePosix.h"
#include "Os/Posix/HostMemoryPosix.h"
#include "Os/Posix/MonitorPosix.h"
#include "Os/Posix/MutexPosix.h"
#include "Os/Posix/SemaphorePosix.h"
#include "Os/Posix/SocketPosix.h"
#include "Os/Posix/StringPosix.h"
#include "Os/Posix/ThreadPosix.h"
#include "system/Immortal.h"

namespace Nfx::Os
{
namespace
{
class OsPosix final : public IOs
{
public:
    IDateTime& DateTime() override { return dateTime; }

    IDirectory& Directory() override { return directory; }

    IEvent& Event() override { return event; }

    IFile& File() override { return file; }

    IHostMemory& HostMemory() override { return hostMemory; }

    IMonitor& Monitor() override { return monitor; }

    IMutex& Mutex() override { return mutex; }

    ISemaphore& Semaphore() override { return semaphore; }

    ISocket& Socket() override { return socket; }

    IString& String() override { return string; }

    IThread& Thread() override { return thread; }

private:
    DateTimePosix dateTime;
    DirectoryPosix directory;
    EventPosix event;
    FilePosix file;
    HostMemoryPosix hostMemory;
    MonitorPosix monitor;
    MutexPosix mutex;
    SemaphorePosix semaphore;
    SocketPosix socket;
    StringPosix string;
    ThreadPosix thread;
};
} // namespace

IOs& Platform()
{
    static const System::Immortal<OsPosix> platform;
    return platform.Get();
}
} // namespace Nfx::Os
