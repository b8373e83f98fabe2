#pragma once

#include "system/String.h"
#include "system/Threading/WaitHandle.h"

namespace Nfx::System::Threading
{
/// A count that waits take one from and releases add to; a wait blocks while it is 0. Any thread.
/// A release that no thread waits for costs no system call on POSIX.
///
/// Semaphores, mutexes and events with a name share one space of names: within the process on POSIX, within the session
/// on Windows. A constructor that is given the name of an existing semaphore gives that one, with its counts.
class Semaphore final : public WaitHandle
{
public:
    /// @throws ArgumentException when the maximum is below 1 or the initial count is not between 0 and the maximum.
    /// @throws IOException when the platform refuses.
    Semaphore(Int32 initialCount, Int32 maximumCount);

    /// The name has at most 128 bytes; an empty one is none.
    /// @throws as without a name; ArgumentException when the name is too long; IOException when a mutex or an event has
    /// the name.
    Semaphore(Int32 initialCount, Int32 maximumCount, const String& name);

    ~Semaphore() override;

    /// Adds to the count and returns what it was before.
    /// @throws ArgumentOutOfRangeException when count is below 1.
    /// @throws InvalidOperationException after Close.
    /// @throws SemaphoreFullException when the count would pass the maximum; nothing changes.
    /// @throws IOException when the platform refuses.
    Int32 Release(Int32 count = 1);

private:
    explicit Semaphore(const NewHandle& handle);

    bool Wait(std::int32_t timeout) override;
    void CloseHandle() override;
};
} // namespace Nfx::System::Threading
