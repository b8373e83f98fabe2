#pragma once

#include <atomic>
#include <cstdint>

namespace Nfx::Os
{
/// What a thread runs; the result is its exit code, where the platform has such a thing.
using ThreadRoutine = std::uint32_t (*)(void* parameter);

/// One thread of the process: in use until its handle is closed and the thread itself is through.
class ThreadRecord final
{
public:
    std::atomic<void*> Handle{nullptr}; // what the platform knows the thread by
    std::atomic<std::int32_t> InUse{0};
    std::atomic<bool> Taken{false};
    std::atomic<bool> UsedByThread{false}; // whoever clears it gives up the use that the thread has of its record
    std::atomic<bool> Interrupted{false};  // set by Interrupt, taken back by the thread itself
    ThreadRoutine Start = nullptr;         // constant while the record is in use, like Parameter
    void* Parameter = nullptr;
};

/// The records of all threads, one table per process: it bounds how many threads there can be at a time.
/// Any thread, without a lock.
class ThreadTable final
{
public:
    ThreadTable() = delete;

    static constexpr std::int32_t Size = 2048;
    static constexpr std::int32_t MaximumThreads = Size - 1; // record 0 stands for "no thread"

    /// The first free record, with one use for the handle and one for the thread; null when all are taken.
    static ThreadRecord* Take(ThreadRoutine start, void* parameter) noexcept;

    /// The record in use that has this handle; null when there is none.
    static ThreadRecord* Find(const void* handle) noexcept;

    /// Gives up one use; true when it was the last one, and the caller then puts the record back.
    static bool Drop(ThreadRecord& record) noexcept;

    /// Gives up the use that the thread has of its record, unless that is done already; true as for Drop.
    static bool DropUseOfThread(ThreadRecord& record) noexcept;

    /// Makes the record free for the next thread.
    static void PutBack(ThreadRecord& record) noexcept;
};
} // namespace Nfx::Os
