#pragma once

namespace Nfx::Os
{
class IDateTime;
class IDirectory;
class IEvent;
class IFile;
class IHostMemory;
class IMonitor;
class IMutex;
class ISemaphore;
class ISocket;
class IString;
class IThread;

/// The services of the platform: every platform call of the framework goes through one of them.
/// The services have no state that a caller could see and may be called from any thread.
class IOs
{
public:
    virtual IDateTime& DateTime() = 0;
    virtual IDirectory& Directory() = 0;
    virtual IEvent& Event() = 0;
    virtual IFile& File() = 0;
    virtual IHostMemory& HostMemory() = 0;
    virtual IMonitor& Monitor() = 0;
    virtual IMutex& Mutex() = 0;
    virtual ISemaphore& Semaphore() = 0;
    virtual ISocket& Socket() = 0;
    virtual IString& String() = 0;
    virtual IThread& Thread() = 0;

    IOs(const IOs&) = delete;
    IOs& operator=(const IOs&) = delete;

protected:
    IOs() = default;
    virtual ~IOs() = default; // lives as long as the process: threads may still run while it exits
};

/// The services of the platform that this build is for.
IOs& Platform();
} // namespace Nfx::Os
