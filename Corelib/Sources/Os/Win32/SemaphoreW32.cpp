#include "Os/Win32/SemaphoreW32.h"

#include "Os/Win32/WaitObjectW32.h"
#include "Os/Win32/WaitW32.h"

namespace Nfx::Os
{
bool SemaphoreW32::Close(ObjectHandle semaphore)
{
    return WaitObjectW32::Close(semaphore);
}

bool SemaphoreW32::Create(ObjectHandle& semaphore,
                          std::int32_t initialCount,
                          std::int32_t maximumCount,
                          std::string_view name,
                          CreateStatus& status)
{
    return WaitObjectW32::Create(semaphore, name, status, [=](const wchar_t* wideName) {
        return CreateSemaphoreW(nullptr, initialCount, maximumCount, wideName);
    });
}

bool SemaphoreW32::Open(ObjectHandle& semaphore, std::string_view name)
{
    return WaitObjectW32::Open(semaphore, name, [](const wchar_t* wideName) {
        return OpenSemaphoreW(SEMAPHORE_MODIFY_STATE | SYNCHRONIZE, FALSE, wideName);
    });
}

bool SemaphoreW32::Release(ObjectHandle semaphore,
                           std::int32_t count,
                           std::int32_t& previousCount,
                           ReleaseStatus& status)
{
    LONG previous = 0;
    if (count < 1) // not every version refuses it
    {
        status = ReleaseStatus::Failed;
        return false;
    }
    if (ReleaseSemaphore(WaitObjectW32::Of(semaphore), count, &previous) == FALSE)
    {
        status = GetLastError() == ERROR_TOO_MANY_POSTS ? ReleaseStatus::Refused : ReleaseStatus::Failed;
        return false;
    }
    previousCount = previous;
    status = ReleaseStatus::Released;
    return true;
}

bool SemaphoreW32::Wait(ObjectHandle semaphore, std::int32_t timeout)
{
    return WaitForW32(WaitObjectW32::Of(semaphore), timeout);
}
} // namespace Nfx::Os
