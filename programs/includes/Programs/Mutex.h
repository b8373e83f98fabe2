#pragma once

#include "system/Threading/ThreadAnnotations.h"

#include <mutex>

namespace Zent::Discovery::Programs
{
/// The standard library's mutex with the annotations that a clang build checks. Lock it through Lock; a
/// std::condition_variable_any waits with it. Any thread.
class NFX_CAPABILITY("mutex") Mutex final
{
public:
    void lock() NFX_ACQUIRE() { mutex.lock(); } // NOLINT(readability-identifier-naming): the standard's name

    void unlock() NFX_RELEASE() { mutex.unlock(); } // NOLINT(readability-identifier-naming): the standard's name

private:
    std::mutex mutex;
};

/// Owns a mutex for as long as it lives.
class NFX_SCOPED_CAPABILITY Lock final
{
public:
    explicit Lock(Mutex& mutex) NFX_ACQUIRE(mutex)
        : mutex(mutex)
    {
        mutex.lock();
    }

    ~Lock() NFX_RELEASE() { mutex.unlock(); }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    Mutex& mutex;
};
} // namespace Zent::Discovery::Programs
