#include "Os/Posix/EventPosix.h"

#include "Os/Posix/WaitObjectPosix.h"

#include <memory>
#include <new>

namespace Nfx::Os
{
namespace
{
class EventObject final : public WaitObjectPosix
{
public:
    EventObject(bool signalled, bool manualReset) noexcept
        : manualReset(manualReset)
        , signalled(signalled)
    {
    }

    void Set()
    {
        const ConditionPosix::Guard lock(condition);
        signalled = true;
        if (manualReset)
        {
            ReleaseSleepers(); // a Reset right behind it must not hold them back
        }
        else
        {
            condition.WakeOne();
        }
    }

    void Reset()
    {
        const ConditionPosix::Guard lock(condition);
        signalled = false;
    }

protected:
    bool TryTake() override NFX_REQUIRES(condition)
    {
        const bool taken = signalled;
        signalled = signalled && manualReset;
        return taken;
    }

private:
    const bool manualReset;
    bool signalled NFX_GUARDED_BY(condition);
};
} // namespace

bool EventPosix::Close(ObjectHandle event)
{
    WaitObjectPosix::Close(event);
    return true;
}

bool EventPosix::Create(
    ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status)
{
    std::unique_ptr<WaitObjectPosix> object(new (std::nothrow) EventObject(signalled, manualReset));
    status = WaitObjectPosix::Publish(std::move(object), name, event);
    return status == CreateStatus::Created || status == CreateStatus::Existed;
}

bool EventPosix::Open(ObjectHandle& event, std::string_view name)
{
    return WaitObjectPosix::Open<EventObject>(name, event);
}

bool EventPosix::Reset(ObjectHandle event)
{
    WaitObjectPosix::Of<EventObject>(event).Reset();
    return true;
}

bool EventPosix::Set(ObjectHandle event)
{
    WaitObjectPosix::Of<EventObject>(event).Set();
    return true;
}

bool EventPosix::Wait(ObjectHandle event, std::int32_t timeout)
{
    return WaitObjectPosix::Of<EventObject>(event).Wait(timeout);
}
} // namespace Nfx::Os
