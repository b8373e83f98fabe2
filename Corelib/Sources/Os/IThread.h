#pragma once

#include "Os/ThreadTable.h"

#include <cstdint>

namespace Nfx::Os
{
/// Threads. Operations on a record report success as a truth value and may be called from any thread while the record
/// is not closed. Timeouts are milliseconds; -1 waits without limit, and below that nothing is waited for.
class IThread
{
public:
    virtual ~IThread() = default;

    /// For a platform whose threads need something set up first; none of ours does.
    virtual bool Open() { return true; }

    /// The counterpart of Open.
    virtual bool Shut() { return true; }

    /// Gives the record back, at once or, when the thread still runs, at its end. False without a record.
    virtual bool Close(ThreadRecord* thread) = 0;

    /// Starts a thread. Null when all records are taken or the platform refuses. The stack size is in bytes. On POSIX
    /// the thread blocks the signals of the process but those of its own faults, and real-time ones, SIGPWR and
    /// SIGXCPU, which it takes when the thread that creates it does.
    virtual ThreadRecord* Create(ThreadRoutine start,
                                 void* parameter,
                                 std::uint64_t& threadId,
                                 std::uint32_t stackSize) = 0;

    /// The record whose handle is the platform's name for the thread that calls. That name is the same in every thread
    /// and stands in no record, so the result is null.
    virtual ThreadRecord* CurrentRecord() = 0;

    /// Unique among the threads that live.
    virtual std::uint64_t CurrentThreadId() = 0;

    /// From 0 (lowest) to 4 (highest): the platform's priority plus 2.
    virtual bool GetPriority(ThreadRecord* thread, std::int32_t& priority) = 0;

    /// Ends the calling thread.
    [[noreturn]] virtual void Exit(std::uint32_t code) = 0;

    virtual bool Resume(ThreadRecord* thread) = 0;

    /// From 0 (lowest) to 4 (highest); any other value counts as 2, the normal one. False when the platform refuses,
    /// for example for lack of a right.
    virtual bool SetPriority(ThreadRecord* thread, std::int32_t priority) = 0;

    /// Sleeps, whatever happens meanwhile.
    virtual void Sleep(std::int32_t milliseconds) = 0;

    /// Returns when the thread has stopped; one on its last steps may end all the same. False for the calling thread
    /// itself.
    virtual bool Suspend(ThreadRecord* thread) = 0;

    /// Ends the thread by force where the platform can; its destructors do not run then, and what it holds stays held.
    /// Elsewhere it does what Interrupt does, and the thread is expected to end itself.
    virtual bool Terminate(ThreadRecord* thread, std::uint32_t exitCode) = 0;

    /// True when the thread ended within the timeout. The wait can be interrupted.
    virtual bool Wait(ThreadRecord* thread, std::int32_t timeout) = 0;

    /// Ends the thread's current wait in this layer or, when it does not wait, the next one that would block: the wait
    /// returns false. A wait that finds its object signalled takes it all the same.
    virtual bool Interrupt(ThreadRecord* thread) = 0;

    /// Sleeps until the time is over or the thread is interrupted.
    virtual void Pause(std::int32_t timeout) = 0;

    /// Shows in debuggers; platforms may cut it.
    virtual bool SetName(ThreadRecord* thread, const char* name) = 0;

    /// True when the calling thread was interrupted since it last asked. Threads that were not created here never are.
    virtual bool TakeInterrupt() = 0;

protected:
    /// Platform priorities lie around zero.
    static std::int32_t ToPlatformPriority(std::int32_t priority) noexcept
    {
        return priority < 0 || priority > 4 ? 0 : priority - 2;
    }

    static std::int32_t FromPlatformPriority(std::int32_t priority) noexcept { return priority + 2; }
};
} // namespace Nfx::Os
