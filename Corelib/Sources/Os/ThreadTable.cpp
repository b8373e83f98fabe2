#include "Os/ThreadTable.h"

#include <span>

namespace Nfx::Os
{
namespace
{
constinit ThreadRecord records[ThreadTable::Size];

std::span<ThreadRecord> UsableRecords() noexcept
{
    return std::span(records).subspan(1);
}
} // namespace

ThreadRecord* ThreadTable::Take(ThreadRoutine start, void* parameter) noexcept
{
    for (ThreadRecord& record : UsableRecords())
    {
        bool expected = false;
        if (!record.Taken.load(std::memory_order_relaxed) &&
            record.Taken.compare_exchange_strong(expected, true, std::memory_order_acquire))
        {
            record.Start = start;
            record.Parameter = parameter;
            record.Interrupted.store(false, std::memory_order_relaxed);
            record.UsedByThread.store(true, std::memory_order_relaxed);
            record.InUse.store(2, std::memory_order_release);
            return &record;
        }
    }
    return nullptr;
}

ThreadRecord* ThreadTable::Find(const void* handle) noexcept
{
    for (ThreadRecord& record : UsableRecords())
    {
        if (record.InUse.load(std::memory_order_acquire) != 0 &&
            record.Handle.load(std::memory_order_relaxed) == handle)
        {
            return &record;
        }
    }
    return nullptr;
}

bool ThreadTable::Drop(ThreadRecord& record) noexcept
{
    std::int32_t uses = record.InUse.load(std::memory_order_relaxed);
    while (uses > 0)
    {
        if (record.InUse.compare_exchange_weak(uses, uses - 1, std::memory_order_acq_rel, std::memory_order_relaxed))
        {
            return uses == 1;
        }
    }
    return false;
}

bool ThreadTable::DropUseOfThread(ThreadRecord& record) noexcept
{
    return record.UsedByThread.exchange(false, std::memory_order_acq_rel) && Drop(record);
}

void ThreadTable::PutBack(ThreadRecord& record) noexcept
{
    record.Handle.store(nullptr, std::memory_order_relaxed);
    record.Start = nullptr;
    record.Parameter = nullptr;
    record.Taken.store(false, std::memory_order_release);
}
} // namespace Nfx::Os
