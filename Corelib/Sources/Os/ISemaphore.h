#pragma once

#include "Os/WaitObject.h"

#include <string_view>

namespace Nfx::Os
{
/// Semaphores. An empty name makes an object without one. Semaphores, mutexes and events share one space of names:
/// within the process on POSIX, within the session on Windows. Operations report success as a truth value.
class ISemaphore
{
public:
    virtual ~ISemaphore() = default;

    virtual bool Close(ObjectHandle semaphore) = 0;

    virtual bool Create(ObjectHandle& semaphore,
                        std::int32_t initialCount,
                        std::int32_t maximumCount,
                        std::string_view name,
                        CreateStatus& status) = 0;

    /// False when no semaphore has this name.
    virtual bool Open(ObjectHandle& semaphore, std::string_view name) = 0;

    /// All of the count or, when that would pass the maximum, nothing.
    virtual bool Release(ObjectHandle semaphore,
                         std::int32_t count,
                         std::int32_t& previousCount,
                         ReleaseStatus& status) = 0;

    /// True when the caller took one from the count within the timeout: milliseconds, -1 waits without limit, below
    /// that nothing is waited for. False as well when the thread was interrupted.
    virtual bool Wait(ObjectHandle semaphore, std::int32_t timeout) = 0;
};
} // namespace Nfx::Os
