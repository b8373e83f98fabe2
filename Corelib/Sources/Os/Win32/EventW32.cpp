#include "Os/Win32/EventW32.h"

#include "Os/Win32/WaitObjectW32.h"
#include "Os/Win32/WaitW32.h"

namespace Nfx::Os
{
bool EventW32::Close(ObjectHandle event)
{
    return WaitObjectW32::Close(event);
}

bool EventW32::Create(
    ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status)
{
    return WaitObjectW32::Create(event, name, status, [=](const wchar_t* wideName) {
        return CreateEventW(nullptr, manualReset ? TRUE : FALSE, signalled ? TRUE : FALSE, wideName);
    });
}

bool EventW32::Open(ObjectHandle& event, std::string_view name)
{
    return WaitObjectW32::Open(event, name, [](const wchar_t* wideName) {
        return OpenEventW(EVENT_MODIFY_STATE | SYNCHRONIZE, FALSE, wideName);
    });
}

bool EventW32::Reset(ObjectHandle event)
{
    return ResetEvent(WaitObjectW32::Of(event)) != FALSE;
}

bool EventW32::Set(ObjectHandle event)
{
    return SetEvent(WaitObjectW32::Of(event)) != FALSE;
}

bool EventW32::Wait(ObjectHandle event, std::int32_t timeout)
{
    return WaitForW32(WaitObjectW32::Of(event), timeout);
}
} // namespace Nfx::Os
