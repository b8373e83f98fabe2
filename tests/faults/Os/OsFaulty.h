#pragma once

#include "Os/DirectoryFaulty.h"
#include "Os/EventFaulty.h"
#include "Os/FileFaulty.h"
#include "Os/IOs.h"
#include "Os/SemaphoreFaulty.h"
#include "Os/SocketFaulty.h"
#include "Os/ThreadFaulty.h"

namespace Nfx::Os
{
/// The services that Platform() has in every other program: the build compiles them into this one by this name.
IOs& RealPlatform();
} // namespace Nfx::Os

namespace Tests
{
/// What Platform() is in this program: the platform's services, some of which can be made to fail.
class OsFaulty final : public Nfx::Os::IOs
{
public:
    explicit OsFaulty(Nfx::Os::IOs& real)
        : real(real)
        , directory(real.Directory())
        , event(real.Event())
        , file(real.File())
        , semaphore(real.Semaphore())
        , socket(real.Socket())
        , thread(real.Thread())
    {
    }

    Nfx::Os::IDateTime& DateTime() override { return real.DateTime(); }

    Nfx::Os::IDirectory& Directory() override { return directory; }

    Nfx::Os::IEvent& Event() override { return event; }

    Nfx::Os::IFile& File() override { return file; }

    Nfx::Os::IHostMemory& HostMemory() override { return real.HostMemory(); }

    Nfx::Os::IMonitor& Monitor() override { return real.Monitor(); }

    Nfx::Os::IMutex& Mutex() override { return real.Mutex(); }

    Nfx::Os::ISemaphore& Semaphore() override { return semaphore; }

    Nfx::Os::ISocket& Socket() override { return socket; }

    Nfx::Os::IString& String() override { return real.String(); }

    Nfx::Os::IThread& Thread() override { return thread; }

private:
    Nfx::Os::IOs& real;
    DirectoryFaulty directory;
    EventFaulty event;
    FileFaulty file;
    SemaphoreFaulty semaphore;
    SocketFaulty socket;
    ThreadFaulty thread;
};
} // namespace Tests
