#include "Os/Win32/WaitObjectW32.h"

namespace Nfx::Os
{
bool WaitObjectW32::Close(ObjectHandle handle) noexcept
{
    return CloseHandle(Of(handle)) != FALSE;
}

bool WaitObjectW32::Store(HANDLE created, ObjectHandle& handle, CreateStatus& status) noexcept
{
    const DWORD error = GetLastError();
    if (created == nullptr)
    {
        status = CreateStatus::Failed;
        return false;
    }
    status = error == ERROR_ALREADY_EXISTS ? CreateStatus::Existed : CreateStatus::Created;
    handle = reinterpret_cast<ObjectHandle>(created);
    return true;
}
} // namespace Nfx::Os
