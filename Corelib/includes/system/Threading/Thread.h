#pragma once

#include "system/Collections/Generic/List.h"
#include "system/Delegate.h"
#include "system/SmartPointer.h"
#include "system/Threading/ThreadPriority.h"
#include "system/Threading/ThreadState.h"
#include "system/UInt64.h"

namespace Nfx::System::Threading
{
/// Runs a delegate on a thread of the platform. Whoever starts a thread joins it; one that is let go of runs on by
/// itself. At most 2047 threads exist at a time: a thread counts until it has ended and its Thread objects are gone.
///
/// Any thread may use a Thread. Timeouts are milliseconds, -1 waits without limit.
///
/// Waiting means Join, Sleep, WaitHandle::WaitOne and Monitor::Wait; entering a Monitor does not count. What the
/// delegate throws ends the thread and nothing else, and is not told to anybody. On POSIX the thread gets no signals of
/// the process but those of its own faults, and real-time ones, SIGPWR and SIGXCPU, which it takes when the thread that
/// starts it does.
class Thread final : public Object
{
public:
    class ThreadData;

    /// Thrown in a thread that is aborted, to unwind it: whoever catches everything throws it on. It ends with the
    /// thread's outermost function.
    class AbortSignal final
    {
    };

    /// @throws ArgumentNullException when start is null.
    explicit Thread(const SmartPointer<Delegate<>>& start);

    /// The delegate is handed what Start is given.
    /// @throws ArgumentNullException when start is null.
    explicit Thread(const SmartPointer<Delegate<Object*>>& start);

    ~Thread() override;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Starts the thread; a delegate that takes an object gets null.
    /// @throws ThreadStateException when it was started, or aborted, before.
    /// @throws OutOfMemoryException or std::bad_alloc when the thread cannot be created; it may be tried again.
    void Start();

    /// The parameter must live until the delegate is through with it.
    /// @throws InvalidOperationException when the delegate takes nothing; otherwise as Start without a parameter.
    void Start(Object* parameter);

    /// Waits until the thread has ended.
    /// @throws ThreadStateException before Start; InvalidOperationException in the thread itself.
    /// @throws ThreadInterruptedException when the calling thread was interrupted.
    /// @throws IOException when the platform cannot wait for it.
    void Join();

    /// Whether the thread ended within the timeout.
    /// @throws ArgumentException when the timeout is below -1; otherwise as Join without a timeout.
    Boolean Join(Int32 timeout);

    /// Lets the calling thread sleep; 0 gives way to others, -1 sleeps until it is interrupted or aborted.
    /// @throws ArgumentException when the time is below -1.
    /// @throws ThreadInterruptedException when the calling thread was interrupted.
    static void Sleep(Int32 milliseconds);

    /// Ends the thread's wait, or the next one that blocks, by a ThreadInterruptedException there. Once it has ended,
    /// nothing happens.
    void Interrupt();

    /// Stops the thread where it is until Resume; it keeps every lock that it holds. Nothing happens when it is
    /// suspended already. Meant for diagnosis: who suspends a thread must not need what that thread may hold, memory
    /// allocation included.
    /// @throws ThreadStateException before Start, once the thread has ended, and when the platform cannot stop it.
    /// @throws InvalidOperationException in the thread itself.
    void Suspend();

    /// @throws ThreadStateException when the thread is not suspended.
    void Resume();

    /// Ends the thread without its consent; nothing happens once it has ended. A thread that aborts itself, and on
    /// POSIX any thread, unwinds its stack: on POSIX when it waits next, so that one that never waits runs on. On
    /// Windows another thread ends where it is, without destructors, and keeps every lock that it holds.
    /// @throws ThreadStateException while the thread is suspended.
    void Abort();

    ThreadState GetThreadState() const;

    ThreadPriority GetPriority() const;

    /// May be set at any time. A value without a name counts as Normal. False when the platform refuses, for example a
    /// higher priority without the right; the thread goes on with the one it has.
    Boolean SetPriority(const ThreadPriority& priority);

    /// A mark for those who look at the state; it has no other effect.
    void SetBackground(Boolean isBackground);

    /// Shows in debuggers as far as the platform can: on Linux the first 15 bytes.
    void SetName(const String& name);

    /// The platform's id; 0 before Start. The platform may give it to another thread after this one's end.
    UInt64 GetThreadId() const;

    static UInt64 CurrentThreadId();

    /// The ids of the threads that were started and have not ended, in the order of their start; shows what leaks.
    static Collections::Generic::List<UInt64> RunningThreadIds();

private:
    void StartWith(Object* parameter);

    const SmartPointer<ThreadData> data; // shared with the running thread
};
} // namespace Nfx::System::Threading
