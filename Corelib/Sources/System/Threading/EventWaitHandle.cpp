#include "system/Threading/EventWaitHandle.h"

#include "Os/IEvent.h"
#include "Os/IOs.h"
#include "system/Exceptions.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/EventWaitHandle";

Os::ObjectHandle CreateHandle(bool signalled, bool manualReset, const String& name)
{
    Os::ObjectHandle handle = 0;
    Os::CreateStatus status{};
    if (!Os::Platform().Event().Create(handle, signalled, manualReset, name.View(), status))
    {
        if (status == Os::CreateStatus::NameTooLong)
        {
            throw ArgumentException(SourceName, __LINE__);
        }
        throw IO::IOException(SourceName, __LINE__);
    }
    return handle;
}

bool IsManualReset(const EventResetMode& mode)
{
    if (!EventResetMode::IsDefined(mode))
    {
        throw ArgumentException(SourceName, __LINE__);
    }
    return mode == EventResetMode::ManualReset;
}
} // namespace

EventWaitHandle::EventWaitHandle(Boolean signalled, const EventResetMode& mode, const String& name)
    : EventWaitHandle(NewHandle{CreateHandle(signalled, IsManualReset(mode), name)})
{
}

EventWaitHandle::EventWaitHandle(const NewHandle& handle)
    : WaitHandle(handle)
{
}

EventWaitHandle::~EventWaitHandle()
{
    Close();
}

void EventWaitHandle::Set()
{
    RequireOpen(__LINE__);
    if (!Os::Platform().Event().Set(GetHandle()))
    {
        throw IO::IOException(SourceName, __LINE__);
    }
}

void EventWaitHandle::Reset()
{
    RequireOpen(__LINE__);
    if (!Os::Platform().Event().Reset(GetHandle()))
    {
        throw IO::IOException(SourceName, __LINE__);
    }
}

void EventWaitHandle::RequireOpen(std::int32_t line) const
{
    if (IsClosed())
    {
        throw InvalidOperationException(SourceName, line);
    }
}

bool EventWaitHandle::Wait(std::int32_t timeout)
{
    return Os::Platform().Event().Wait(GetHandle(), timeout);
}

void EventWaitHandle::CloseHandle()
{
    Os::Platform().Event().Close(GetHandle());
}
} // namespace Nfx::System::Threading
