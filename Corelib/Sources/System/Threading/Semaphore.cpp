#include "system/Threading/Semaphore.h"

#include "Os/IOs.h"
#include "Os/ISemaphore.h"
#include "system/Exceptions.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Semaphore";

Os::ObjectHandle CreateHandle(std::int32_t initialCount, std::int32_t maximumCount, const String& name)
{
    if (maximumCount < 1 || initialCount > maximumCount || initialCount < 0)
    {
        throw ArgumentException(SourceName, 142);
    }
    Os::ObjectHandle handle = 0;
    Os::CreateStatus status{};
    if (!Os::Platform().Semaphore().Create(handle, initialCount, maximumCount, name.View(), status))
    {
        if (status == Os::CreateStatus::NameTooLong)
        {
            throw ArgumentException(SourceName, 149);
        }
        throw IO::IOException(SourceName, __LINE__);
    }
    return handle;
}
} // namespace

Semaphore::Semaphore(Int32 initialCount, Int32 maximumCount)
    : Semaphore(initialCount, maximumCount, String())
{
}

Semaphore::Semaphore(Int32 initialCount, Int32 maximumCount, const String& name)
    : Semaphore(NewHandle{CreateHandle(initialCount, maximumCount, name)})
{
}

Semaphore::Semaphore(const NewHandle& handle)
    : WaitHandle(handle)
{
}

Semaphore::~Semaphore()
{
    Close();
}

Int32 Semaphore::Release(Int32 count)
{
    if (IsClosed())
    {
        throw InvalidOperationException(SourceName, 101);
    }
    if (count < 1)
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
    std::int32_t previousCount = 0;
    Os::ReleaseStatus status{};
    if (!Os::Platform().Semaphore().Release(GetHandle(), count, previousCount, status))
    {
        if (status == Os::ReleaseStatus::Refused)
        {
            throw SemaphoreFullException(SourceName, 108);
        }
        throw IO::IOException(SourceName, 110);
    }
    return previousCount;
}

bool Semaphore::Wait(std::int32_t timeout)
{
    return Os::Platform().Semaphore().Wait(GetHandle(), timeout);
}

void Semaphore::CloseHandle()
{
    Os::Platform().Semaphore().Close(GetHandle());
}
} // namespace Nfx::System::Threading
