#pragma once

#include "system/Threading/Monitor.h"

namespace Nfx::System::Threading
{
/// Holds a monitor, or the lock of an object, from construction to the end of the scope.
class NFX_SCOPED_CAPABILITY Lock final
{
public:
    explicit Lock(Monitor& monitor) NFX_ACQUIRE(monitor)
        : monitor(&monitor)
    {
        monitor.Enter();
    }

    /// The lock that Monitor keeps for an object, which must live to the end of the scope.
    explicit Lock(const Object& object) NFX_NO_THREAD_SAFETY_ANALYSIS : object(&object) { Monitor::Enter(object); }

    explicit Lock(const Monitor& monitor) = delete; // would lock the object instead of the monitor

    ~Lock() NFX_RELEASE()
    {
        if (monitor != nullptr)
        {
            monitor->Exit();
        }
        else
        {
            Monitor::Exit(*object);
        }
    }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    Monitor* const monitor = nullptr; // one of the two
    const Object* const object = nullptr;
};
} // namespace Nfx::System::Threading
