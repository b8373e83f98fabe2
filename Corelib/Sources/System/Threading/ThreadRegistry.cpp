#include "System/Threading/ThreadRegistry.h"

#include "system/Threading/Lock.h"

namespace Nfx::System::Threading
{
ThreadRegistry& ThreadRegistry::Instance()
{
    static const Immortal<ThreadRegistry> registry;
    return registry.Get();
}

void ThreadRegistry::Add(std::list<Entry>& entries) noexcept
{
    const Lock lock(access);
    threads.splice(threads.end(), entries);
}

void ThreadRegistry::Remove(const Thread::ThreadData& data) noexcept
{
    const Lock lock(access);
    threads.remove_if([&data](const Entry& entry) { return &*entry.Data == &data; });
}

Collections::Generic::List<UInt64> ThreadRegistry::Ids() const
{
    Collections::Generic::List<UInt64> ids;
    const Lock lock(access);
    for (const Entry& entry : threads)
    {
        ids.Add(entry.Id);
    }
    return ids;
}
} // namespace Nfx::System::Threading
