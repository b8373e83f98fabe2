#pragma once

#include "system/Threading/Monitor.h"

namespace Nfx::System::Threading
{
/// Holds a monitor from construction to the end of the scope.
class NFX_SCOPED_CAPABILITY Lock final
{
public:
    explicit Lock(Monitor& monitor) NFX_ACQUIRE(monitor)
        : monitor(monitor)
    {
        monitor.Enter();
    }

    ~Lock() NFX_RELEASE() { monitor.Exit(); }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    Monitor& monitor;
};
} // namespace Nfx::System::Threading
