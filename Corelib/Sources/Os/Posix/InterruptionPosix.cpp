#include "Os/Posix/InterruptionPosix.h"

namespace Nfx::Os
{
namespace
{
constinit thread_local InterruptionPosix* current = nullptr;
} // namespace

InterruptionPosix::InterruptionPosix(std::atomic<bool>& requested) noexcept
    : requested(requested)
{
}

InterruptionPosix* InterruptionPosix::Current() noexcept
{
    return current;
}

void InterruptionPosix::SetCurrent(InterruptionPosix* interruption) noexcept
{
    current = interruption;
}

void InterruptionPosix::Request()
{
    requested.store(true);
    const ConditionPosix::Guard lock(guard);
    if (sleepsOn != nullptr)
    {
        // Whoever has looked at the request before it was made sleeps by now.
        const ConditionPosix::Guard sleepersLock(*sleepsOn);
        sleepsOn->WakeAll();
    }
}

void InterruptionPosix::SleepOn(ConditionPosix* condition)
{
    const ConditionPosix::Guard lock(guard);
    sleepsOn = condition;
}

InterruptionPosix::Scope::Scope(ConditionPosix& condition)
    : interruption(Current())
{
    if (interruption != nullptr)
    {
        interruption->SleepOn(&condition);
    }
}

InterruptionPosix::Scope::~Scope()
{
    if (interruption != nullptr)
    {
        interruption->SleepOn(nullptr);
    }
}

bool InterruptionPosix::Scope::IsRequested() const noexcept
{
    return interruption != nullptr && interruption->requested.load();
}
} // namespace Nfx::Os
