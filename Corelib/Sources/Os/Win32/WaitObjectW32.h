#pragma once

#include "Os/WaitObject.h"
#include "Os/Win32/ObjectNameW32.h"
#include "Os/Win32/PlatformW32.h"

namespace Nfx::Os
{
/// What semaphores, mutexes and events have in common on this platform.
class WaitObjectW32 final
{
public:
    WaitObjectW32() = delete;

    static HANDLE Of(ObjectHandle handle) noexcept
    {
        return reinterpret_cast<HANDLE>(handle); // the number came from a HANDLE
    }

    static bool Close(ObjectHandle handle) noexcept;

    /// Stores what create(name), which returns a HANDLE, has made, and how it went.
    template <class TCreate>
    static bool Create(ObjectHandle& handle, std::string_view name, CreateStatus& status, const TCreate& create)
    {
        const ObjectNameW32 wideName(name);
        status = wideName.Status();
        return status == CreateStatus::Created && Store(create(wideName.Text()), handle, status);
    }

    /// Stores what open(name), which returns a HANDLE, has found.
    template <class TOpen>
    static bool Open(ObjectHandle& handle, std::string_view name, const TOpen& open)
    {
        const ObjectNameW32 wideName(name);
        CreateStatus status = wideName.Status();
        return status == CreateStatus::Created && !name.empty() && Store(open(wideName.Text()), handle, status);
    }

private:
    static bool Store(HANDLE created, ObjectHandle& handle, CreateStatus& status) noexcept;
};
} // namespace Nfx::Os
