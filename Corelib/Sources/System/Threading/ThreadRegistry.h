#pragma once

#include "System/Threading/ThreadData.h"
#include "system/Collections/Generic/List.h"
#include "system/Immortal.h"
#include "system/UInt64.h"

#include <list>

namespace Nfx::System::Threading
{
/// The threads that Thread has started and that have not ended, by their ids: one table per process. Any thread.
class ThreadRegistry final
{
public:
    struct Entry
    {
        UInt64 Id;
        SmartPointer<Thread::ThreadData> Data;
    };

    /// @throws OutOfMemoryException or std::bad_alloc when there is no memory to make it; the next call tries again.
    static ThreadRegistry& Instance();

    ThreadRegistry(const ThreadRegistry&) = delete;
    ThreadRegistry& operator=(const ThreadRegistry&) = delete;

    /// Moves the entries to the end of the table: once a thread runs, it cannot lack the memory for its own.
    void Add(std::list<Entry>& entries) noexcept;

    void Remove(const Thread::ThreadData& data) noexcept;

    /// In the order in which the threads were started.
    Collections::Generic::List<UInt64> Ids() const;

private:
    friend class Immortal<ThreadRegistry>;

    ThreadRegistry() = default;

    mutable Monitor access; // taken after a thread's control
    std::list<Entry> threads NFX_GUARDED_BY(access);
};
} // namespace Nfx::System::Threading
