#include "Os/SemaphoreFaulty.h"

#include "Os/Faults.h"

namespace Tests
{
using Nfx::Os::CreateStatus;
using Nfx::Os::ObjectHandle;
using Nfx::Os::ReleaseStatus;

bool SemaphoreFaulty::Close(ObjectHandle semaphore)
{
    Faults::CountClosed();
    return real.Close(semaphore);
}

bool SemaphoreFaulty::Create(ObjectHandle& semaphore,
                             std::int32_t initialCount,
                             std::int32_t maximumCount,
                             std::string_view name,
                             CreateStatus& status)
{
    if (Faults::Strikes(Call::CreateSemaphore))
    {
        status = CreateStatus::Failed;
        return false;
    }
    const bool isCreated = real.Create(semaphore, initialCount, maximumCount, name, status);
    Faults::CountOpened(isCreated);
    return isCreated;
}

bool SemaphoreFaulty::Open(ObjectHandle& semaphore, std::string_view name)
{
    const bool isOpened = real.Open(semaphore, name);
    Faults::CountOpened(isOpened);
    return isOpened;
}

bool SemaphoreFaulty::Release(ObjectHandle semaphore,
                              std::int32_t count,
                              std::int32_t& previousCount,
                              ReleaseStatus& status)
{
    if (Faults::Strikes(Call::ReleaseSemaphore))
    {
        status = ReleaseStatus::Failed;
        return false;
    }
    return real.Release(semaphore, count, previousCount, status);
}

bool SemaphoreFaulty::Wait(ObjectHandle semaphore, std::int32_t timeout)
{
    return !Faults::Strikes(Call::WaitSemaphore) && real.Wait(semaphore, timeout);
}
} // namespace Tests
