#include "Os/IOs.h"
#include "Os/Win32/DateTimeW32.h"
#include "Os/Win32/DirectoryW32.h"
#include "Os/Win32/EventW32.h"
#include "Os/Win32/FileW32.h"
#include "Os/Win32/HostMemoryW32.h"
#include "Os/Win32/MonitorW32.h"
#include "Os/Win32/MutexW32.h"
#include "Os/Win32/SemaphoreW32.h"
#include "Os/Win32/SocketW32.h"
#include "Os/Win32/StringW32.h"
#include "Os/Win32/ThreadW32.h"
#include "system/Immortal.h"

namespace Nfx::Os
{
namespace
{
class OsW32 final : public IOs
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
    DateTimeW32 dateTime;
    DirectoryW32 directory;
    EventW32 event;
    FileW32 file;
    HostMemoryW32 hostMemory;
    MonitorW32 monitor;
    MutexW32 mutex;
    SemaphoreW32 semaphore;
    SocketW32 socket;
    StringW32 string;
    ThreadW32 thread;
};
} // namespace

IOs& Platform()
{
    static const System::Immortal<OsW32> platform;
    return platform.Get();
}
} // namespace Nfx::Os
