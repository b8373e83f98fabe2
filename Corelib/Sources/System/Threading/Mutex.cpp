#include "system/Threading/Mutex.h"

#include "Os/IMutex.h"
#include "Os/IOs.h"
#include "system/Exceptions.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Mutex";

Os::ObjectHandle CreateHandle(bool initiallyOwned, const String& name)
{
    Os::ObjectHandle handle = 0;
    Os::CreateStatus status{};
    if (!Os::Platform().Mutex().Create(handle, initiallyOwned, name.View(), status))
    {
        if (status == Os::CreateStatus::NameTooLong)
        {
            throw ArgumentException(SourceName, __LINE__);
        }
        throw IO::IOException(SourceName, __LINE__);
    }
    return handle;
}
} // namespace

Mutex::Mutex()
    : Mutex(false)
{
}

Mutex::Mutex(Boolean initiallyOwned, const String& name)
    : Mutex(NewHandle{CreateHandle(initiallyOwned, name)})
{
}

Mutex::Mutex(const NewHandle& handle)
    : WaitHandle(handle)
{
}

Mutex::~Mutex()
{
    Close();
}

void Mutex::ReleaseMutex()
{
    if (IsClosed())
    {
        throw InvalidOperationException(SourceName, __LINE__);
    }
    Os::ReleaseStatus status{};
    if (!Os::Platform().Mutex().Release(GetHandle(), status))
    {
        if (status == Os::ReleaseStatus::Refused)
        {
            throw InvalidOperationException(SourceName, __LINE__);
        }
        throw IO::IOException(SourceName, __LINE__);
    }
}

bool Mutex::Wait(std::int32_t timeout)
{
    return Os::Platform().Mutex().Wait(GetHandle(), timeout);
}

void Mutex::CloseHandle()
{
    Os::Platform().Mutex().Close(GetHandle());
}
} // namespace Nfx::System::Threading
