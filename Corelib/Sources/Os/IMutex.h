#pragma once

#include "Os/WaitObject.h"

#include <string_view>

namespace Nfx::Os
{
/// Mutexes: the owner may enter again, and a mutex whose owner ended without releasing it goes to the next who waits.
/// Names as in ISemaphore. Operations report success as a truth value.
class IMutex
{
public:
    virtual ~IMutex() = default;

    virtual bool Close(ObjectHandle mutex) = 0;

    /// Initially owned counts only when the mutex is new.
    virtual bool Create(ObjectHandle& mutex, bool initiallyOwned, std::string_view name, CreateStatus& status) = 0;

    /// False when no mutex has this name.
    virtual bool Open(ObjectHandle& mutex, std::string_view name) = 0;

    virtual bool Release(ObjectHandle mutex, ReleaseStatus& status) = 0;

    /// True when the mutex became the caller's within the timeout: milliseconds, -1 waits without limit, below that
    /// nothing is waited for. False as well when the thread was interrupted.
    virtual bool Wait(ObjectHandle mutex, std::int32_t timeout) = 0;
};
} // namespace Nfx::Os
