#include "Os/Win32/MutexW32.h"

#include "Os/Win32/WaitObjectW32.h"
#include "Os/Win32/WaitW32.h"

namespace Nfx::Os
{
bool MutexW32::Close(ObjectHandle mutex)
{
    return WaitObjectW32::Close(mutex);
}

bool MutexW32::Create(ObjectHandle& mutex, bool initiallyOwned, std::string_view name, CreateStatus& status)
{
    return WaitObjectW32::Create(mutex, name, status, [=](const wchar_t* wideName) {
        return CreateMutexW(nullptr, initiallyOwned ? TRUE : FALSE, wideName);
    });
}

bool MutexW32::Open(ObjectHandle& mutex, std::string_view name)
{
    return WaitObjectW32::Open(mutex, name, [](const wchar_t* wideName) {
        return OpenMutexW(MUTEX_MODIFY_STATE | SYNCHRONIZE, FALSE, wideName);
    });
}

bool MutexW32::Release(ObjectHandle mutex, ReleaseStatus& status)
{
    if (ReleaseMutex(WaitObjectW32::Of(mutex)) == FALSE)
    {
        status = GetLastError() == ERROR_NOT_OWNER ? ReleaseStatus::Refused : ReleaseStatus::Failed;
        return false;
    }
    status = ReleaseStatus::Released;
    return true;
}

bool MutexW32::Wait(ObjectHandle mutex, std::int32_t timeout)
{
    return WaitForW32(WaitObjectW32::Of(mutex), timeout);
}
} // namespace Nfx::Os
