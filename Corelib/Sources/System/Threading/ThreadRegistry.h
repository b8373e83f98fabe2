#pragma once

#include "System/Threading/ThreadData.h"
#include "system/Collections/Generic/List.h"
#include "system/UInt64.h"

namespace Nfx::System::Threading
{
/// The threads that Thread has started and that have not ended, by their ids: one table per process. Any thread.
class ThreadRegistry final
{
public:
    ThreadRegistry() = delete;

    /// The memory for a thread that is about to be started: once it runs, it cannot lack a place.
    class Place final
    {
    public:
        /// @throws OutOfMemoryException when there is none.
        Place();
        ~Place();

        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        /// Once at the most.
        void Take(const UInt64& id, const SmartPointer<Thread::ThreadData>& data) noexcept;
    };

    static void Remove(const UInt64& id) noexcept;

    /// In the order in which the threads were started.
    static Collections::Generic::List<UInt64> Ids();
};
} // namespace Nfx::System::Threading
