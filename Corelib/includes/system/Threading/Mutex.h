#pragma once

#include "system/String.h"
#include "system/Threading/WaitHandle.h"

namespace Nfx::System::Threading
{
/// A lock with a name that threads wait for; its owner may wait for it again and releases it as often. When a thread
/// ends without releasing it, the next who waits becomes the owner. Any thread. Names as for Semaphore; for a lock
/// within one component a Monitor is cheaper.
class Mutex final : public WaitHandle
{
public:
    /// Free.
    /// @throws IOException when the platform refuses.
    Mutex();

    /// Owned by the calling thread when initiallyOwned is true and no mutex has the name yet. The name has at most 128
    /// bytes; an empty one is none.
    /// @throws ArgumentException when the name is too long.
    /// @throws IOException when the platform refuses, also because a semaphore or an event has the name.
    explicit Mutex(Boolean initiallyOwned, const String& name = String());

    ~Mutex() override;

    /// Gives up one of the owner's waits; after the last one the mutex is free.
    /// @throws InvalidOperationException when the calling thread is not the owner, or after Close.
    /// @throws IOException when the platform refuses.
    void ReleaseMutex();

private:
    explicit Mutex(const NewHandle& handle);

    bool Wait(std::int32_t timeout) override;
    void CloseHandle() override;
};
} // namespace Nfx::System::Threading
