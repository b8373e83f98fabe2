#pragma once

#include "system/Collections/Generic/List.h"
#include "system/UInt64.h"

namespace Nfx::System::Threading
{
/// The threads that Thread has started and that have not ended, by their ids: one table per process. Any thread.
class ThreadRegistry final
{
public:
    ThreadRegistry() = delete;

    /// Before the first thread is started: makes the table with a place for each thread that there can be, so that
    /// none lacks one for want of memory once it runs.
    /// @throws OutOfMemoryException when it cannot be made.
    static void Prepare();

    static void Add(const UInt64& id) noexcept;

    static void Remove(const UInt64& id) noexcept;

    /// In the order in which the threads were started.
    static Collections::Generic::List<UInt64> Ids();
};
} // namespace Nfx::System::Threading
