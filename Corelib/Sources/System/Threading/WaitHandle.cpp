#include "system/Threading/WaitHandle.h"

#include "System/Threading/ThreadData.h"
#include "system/Exceptions.h"
#include "system/Immortal.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/WaitHandle";
}

const IntPtr& WaitHandle::InvalidHandle()
{
    static const Immortal<IntPtr> handle(std::intptr_t{-1});
    return handle.Get();
}

WaitHandle::WaitHandle(const NewHandle& handle)
    : handle(handle.Handle)
{
}

Boolean WaitHandle::WaitOne()
{
    return WaitOne(-1);
}

Boolean WaitHandle::WaitOne(Int32 timeout)
{
    if (IsClosed())
    {
        throw Exception(ErrorCodes::InvalidHandle, SourceName, 96);
    }
    if (timeout < -1)
    {
        throw Exception(ErrorCodes::InvalidParameterValue, SourceName, 98);
    }
    return Thread::ThreadData::Block(timeout, [this](std::int32_t milliseconds) { return Wait(milliseconds); });
}

void WaitHandle::Close()
{
    if (!IsClosed())
    {
        CloseHandle();
        handle = InvalidHandle();
    }
}

IntPtr WaitHandle::GetHandle() const
{
    return handle;
}

bool WaitHandle::IsClosed() const
{
    return handle == InvalidHandle();
}
} // namespace Nfx::System::Threading
