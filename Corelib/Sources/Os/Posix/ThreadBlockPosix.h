#pragma once

#include "Os/Posix/InterruptionPosix.h"
#include "Os/Posix/SuspensionPosix.h"
#include "Os/Posix/WaitablePosix.h"
#include "Os/ThreadTable.h"

#include <sys/types.h>

namespace Nfx::Os
{
/// What the platform keeps of a thread, as long as its record is in use; waiting for it is waiting for its end.
class ThreadBlockPosix final : public WaitablePosix
{
public:
    explicit ThreadBlockPosix(ThreadRecord& record);

    static ThreadBlockPosix& Of(const ThreadRecord& record) noexcept;

    /// The block of the calling thread; null in threads that were not created here.
    static ThreadBlockPosix* Current() noexcept;

    /// Starts the thread of the record; false when the platform refuses.
    bool Start(std::uint32_t stackSize, std::uint64_t& threadId);

    ThreadRecord& Record() noexcept;

    /// Like Wait, and then not a trace of the thread is left.
    bool Join(std::int32_t timeout);

    /// Before the use that the handle has of the record is dropped.
    void Detach();

    void Interrupt();
    bool Suspend();
    bool Resume();
    std::int32_t GetPriority();
    bool SetPriority(std::int32_t priority);
    bool SetName(const char* name);

protected:
    bool TryTake() override NFX_REQUIRES(condition);

private:
    class Life;

    static void* Run(void* block);

    ThreadRecord& record;
    InterruptionPosix interruption;
    SuspensionPosix suspension;                   // Suspend and Resume under condition
    pthread_t thread{};                           // constant after Start
    pid_t kernelId NFX_GUARDED_BY(condition) = 0; // 0 until the thread runs
    std::int32_t priority NFX_GUARDED_BY(condition) = 0;
    bool isRealTime NFX_GUARDED_BY(condition) = false; // by its priority
    bool hasEnded NFX_GUARDED_BY(condition) = false;
    bool isJoined NFX_GUARDED_BY(condition) = false;
};
} // namespace Nfx::Os
