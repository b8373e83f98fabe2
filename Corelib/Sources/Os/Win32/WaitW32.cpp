#include "Os/Win32/WaitW32.h"

#include "Os/Win32/CurrentThreadW32.h"

namespace Nfx::Os
{
namespace
{
class Remaining final
{
public:
    explicit Remaining(std::int32_t timeout) noexcept
        : isInfinite(timeout < 0)
        , end(GetTickCount64() + static_cast<ULONGLONG>(isInfinite ? 0 : timeout))
    {
    }

    DWORD Milliseconds() const noexcept
    {
        const ULONGLONG now = GetTickCount64();
        return isInfinite ? INFINITE : (now < end ? static_cast<DWORD>(end - now) : 0);
    }

private:
    const bool isInfinite;
    const ULONGLONG end;
};

// An abandoned mutex is the caller's all the same.
bool IsSignalled(DWORD result) noexcept
{
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}
} // namespace

bool WaitForW32(HANDLE object, std::int32_t timeout)
{
    if (timeout < -1)
    {
        return false;
    }
    const Remaining remaining(timeout);
    DWORD milliseconds = timeout < 0 ? INFINITE : static_cast<DWORD>(timeout);
    while (milliseconds != 0 && !CurrentThreadW32::IsInterrupted())
    {
        const DWORD result = WaitForSingleObjectEx(object, milliseconds, TRUE);
        if (result != WAIT_IO_COMPLETION)
        {
            return IsSignalled(result);
        }
        milliseconds = remaining.Milliseconds(); // a procedure of the host's own ends no wait
    }
    return IsSignalled(WaitForSingleObject(object, 0));
}

void PauseW32(std::int32_t timeout)
{
    if (timeout < -1)
    {
        return;
    }
    const Remaining remaining(timeout);
    DWORD milliseconds = timeout < 0 ? INFINITE : static_cast<DWORD>(timeout);
    while (!CurrentThreadW32::IsInterrupted() && SleepEx(milliseconds, TRUE) == WAIT_IO_COMPLETION)
    {
        milliseconds = remaining.Milliseconds();
    }
}
} // namespace Nfx::Os
