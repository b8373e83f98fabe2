#pragma once

#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/Object.h"
#include "system/Threading/ThreadAnnotations.h"

#include <memory>

namespace Nfx::System::Threading
{
/// A lock that its owner may enter again; it is free after as many exits. The owner may also wait in it for another
/// thread to say that something has changed. Any thread; lock it through Lock. Entering a free one takes some
/// nanoseconds. Entering is no wait that Thread::Interrupt ends.
///
/// The static operations do the same with a lock that belongs to an object, whatever its class, for as long as a thread
/// holds or wants it. They search a table of the process, so a Monitor of one's own is faster.
///
/// Timeouts are milliseconds, -1 waits without limit; below that they raise Exception with
/// ErrorCodes::InvalidParameterValue.
class NFX_CAPABILITY("monitor") Monitor final : public Object
{
public:
    class MonitorData;

    /// @throws OutOfMemoryException when the platform has no lock to give.
    Monitor();
    ~Monitor() override;
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// Waits without limit until this thread owns the lock.
    void Enter() NFX_ACQUIRE();

    /// @throws InvalidOperationException when this thread is not the owner.
    void Exit() NFX_RELEASE();

    /// Frees the lock, waits for a pulse, and enters again as often as before. False when the time was over first;
    /// entering again is not limited by it.
    /// @throws InvalidOperationException when this thread is not the owner.
    /// @throws ThreadInterruptedException when the thread was interrupted; it owns the lock then as well.
    /// @throws IOException when the platform has nothing to wait for; likewise.
    Boolean Wait(Int32 timeout = -1) NFX_REQUIRES(this);

    /// Wakes the thread that has waited longest, if any; it goes on once it can enter.
    /// @throws InvalidOperationException when this thread is not the owner.
    void Pulse() NFX_REQUIRES(this);

    /// Wakes all that wait.
    /// @throws InvalidOperationException when this thread is not the owner.
    void PulseAll() NFX_REQUIRES(this);

    static void Enter(const Object& object);
    static void Exit(const Object& object);
    static Boolean Wait(const Object& object, Int32 timeout = -1);
    static void Pulse(const Object& object);
    static void PulseAll(const Object& object);

    static void Enter(const Monitor& monitor) = delete; // would lock the object instead of the monitor

private:
    const std::unique_ptr<MonitorData> data;
};
} // namespace Nfx::System::Threading
