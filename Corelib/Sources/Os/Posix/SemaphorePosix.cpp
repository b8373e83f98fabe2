#include "Os/Posix/SemaphorePosix.h"

#include "Os/Posix/WaitObjectPosix.h"

#include <memory>
#include <new>

namespace Nfx::Os
{
namespace
{
class SemaphoreObject final : public WaitObjectPosix
{
public:
    SemaphoreObject(std::int32_t initialCount, std::int32_t maximumCount) noexcept
        : maximumCount(maximumCount)
        , count(initialCount)
    {
    }

    // The system is called only when there is a sleeper to wake.
    ReleaseStatus Release(std::int32_t released, std::int32_t& previousCount)
    {
        Share(); // whoever is woken may close the last handle
        const ReleaseStatus status = AddPermits(released, previousCount);
        Drop();
        return status;
    }

protected:
    bool TryTake() override NFX_REQUIRES(condition)
    {
        if (count == 0)
        {
            return false;
        }
        --count;
        return true;
    }

private:
    ReleaseStatus AddPermits(std::int32_t released, std::int32_t& previousCount)
    {
        ConditionPosix::Guard lock(condition);
        if (released > maximumCount - count)
        {
            return ReleaseStatus::Refused;
        }
        previousCount = count;
        count += released;
        if (released == 1)
        {
            lock.WakeOneAfterwards();
        }
        else
        {
            condition.WakeAll();
        }
        return ReleaseStatus::Released;
    }

    const std::int32_t maximumCount;
    std::int32_t count NFX_GUARDED_BY(condition);
};
} // namespace

bool SemaphorePosix::Close(ObjectHandle semaphore)
{
    WaitObjectPosix::Close(semaphore);
    return true;
}

bool SemaphorePosix::Create(ObjectHandle& semaphore,
                            std::int32_t initialCount,
                            std::int32_t maximumCount,
                            std::string_view name,
                            CreateStatus& status)
{
    std::unique_ptr<WaitObjectPosix> object;
    if (maximumCount > 0 && initialCount >= 0 && initialCount <= maximumCount)
    {
        object.reset(new (std::nothrow) SemaphoreObject(initialCount, maximumCount));
    }
    status = WaitObjectPosix::Publish(std::move(object), name, semaphore);
    return status == CreateStatus::Created || status == CreateStatus::Existed;
}

bool SemaphorePosix::Open(ObjectHandle& semaphore, std::string_view name)
{
    return WaitObjectPosix::Open<SemaphoreObject>(name, semaphore);
}

bool SemaphorePosix::Release(ObjectHandle semaphore,
                             std::int32_t count,
                             std::int32_t& previousCount,
                             ReleaseStatus& status)
{
    status = count < 1 ? ReleaseStatus::Failed
                       : WaitObjectPosix::Of<SemaphoreObject>(semaphore).Release(count, previousCount);
    return status == ReleaseStatus::Released;
}

bool SemaphorePosix::Wait(ObjectHandle semaphore, std::int32_t timeout)
{
    return WaitObjectPosix::Of<SemaphoreObject>(semaphore).Wait(timeout);
}
} // namespace Nfx::Os
