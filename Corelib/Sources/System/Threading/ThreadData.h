#pragma once

#include "system/Delegate.h"
#include "system/SmartPointer.h"
#include "system/String.h"
#include "system/Threading/Monitor.h"
#include "system/Threading/Thread.h"

#include <atomic>
#include <cstdint>

namespace Nfx::Os
{
class ThreadRecord;
}

namespace Nfx::System::Threading
{
/// What there is to know about one thread, shared by its Thread and the running thread.
///
/// Whoever starts, suspends, resumes or terminates the thread holds control, and so does the thread while it ends: it
/// is not stopped half way through that. The state is changed under control as well, except for WaitSleepJoin, which is
/// the running thread's own.
class Thread::ThreadData final : public Object
{
public:
    /// One of the two delegates is null.
    ThreadData(const SmartPointer<Delegate<>>& start, const SmartPointer<Delegate<Object*>>& startWithParameter);
    ~ThreadData() override;
    ThreadData(const ThreadData&) = delete;
    ThreadData& operator=(const ThreadData&) = delete;

    /// Of the calling thread; null when Thread has not started it.
    static ThreadData* Current() noexcept;

    /// Every wait of the framework goes through here: wait(timeout) is one of the Os layer's and returns whether the
    /// thread got what it waited for.
    /// @throws ThreadInterruptedException or AbortSignal when the thread was woken for that.
    /// @throws IOException when a wait without limit ends for nothing: the platform cannot wait for the object.
    template <class TWait>
    static bool Block(std::int32_t timeout, const TWait& wait)
    {
        ThreadData* const current = Current();
        const bool succeeded = current == nullptr ? wait(timeout) : current->BlockCurrent(timeout, wait);
        if (!succeeded && timeout == -1)
        {
            ThrowWaitFailure();
        }
        return succeeded;
    }

    bool TakesParameter() const;

    bool IsCurrent() const noexcept;

    enum class StartResult
    {
        Started,
        WrongState,
        NoThread // the platform has none; the start may be tried again
    };

    /// This object keeps itself until the thread has ended, as an alias of self.
    StartResult Start(const SmartPointer<ThreadData>& alias, Object* startParameter);

    /// Needs a thread that is not unstarted, and not the calling one. False when the time was over first.
    bool Join(std::int32_t timeout);
    void Interrupt();

    /// Needs a thread that is not the calling one. False when the state does not allow it, or the platform does not.
    bool Suspend();

    /// False when the thread is not suspended.
    bool Resume();

    /// False when the thread is suspended. Does not return to a thread that aborts itself.
    bool Abort();

    ThreadState GetState();
    void SetBackground(bool isBackground);
    ThreadPriority GetPriority() const;
    bool SetPriority(const ThreadPriority& newPriority);
    void SetName(const String& newName);
    std::uint64_t GetId() const;

private:
    class Life;

    /// Shows in the state that the thread waits.
    class Waiting final
    {
    public:
        explicit Waiting(ThreadData& data) noexcept;
        ~Waiting();
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

    private:
        ThreadData& data;
    };

    template <class TWait>
    bool BlockCurrent(std::int32_t timeout, const TWait& wait)
    {
        ThrowIfAborted();
        const Waiting waiting(*this);
        const bool succeeded = wait(timeout);
        if (!succeeded && timeout != 0) // a look at the object is no wait to be woken from
        {
            ThrowIfWoken();
        }
        return succeeded;
    }

    // In Thread's own source, which the exceptions name.
    [[noreturn]] static void ThrowWaitFailure();
    [[noreturn]] static void ThrowInterrupted();

    // On the running thread, without control.
    static std::uint32_t Run(void* data);
    void InvokeDelegate();
    Object* TakeParameter();

    // On any thread, without control.
    SmartPointer<ThreadData> End(); // what keeps this object may be the result alone
    void CollectTerminated();
    Os::ThreadRecord* RecordOfStarted() const;

    // On the running thread, in or before a wait.
    void ThrowIfAborted() const;
    void ThrowIfWoken() const;

    bool Has(std::int32_t flags) const noexcept;
    void Change(std::int32_t cleared, std::int32_t set) noexcept;
    bool ApplyPriority() NFX_REQUIRES(control);
    void ApplyName() NFX_REQUIRES(control);

    const SmartPointer<Delegate<>> start;
    const SmartPointer<Delegate<Object*>> startWithParameter;

    mutable Monitor control;
    Object* parameter NFX_GUARDED_BY(control) = nullptr;
    SmartPointer<ThreadData> self NFX_GUARDED_BY(control); // from Start to the end
    std::int32_t priority NFX_GUARDED_BY(control) = ThreadPriority::Normal;
    String name NFX_GUARDED_BY(control);
    std::uint64_t id NFX_GUARDED_BY(control) = 0;
    bool isInterruptedAtStart NFX_GUARDED_BY(control) = false;
    bool hasEnded NFX_GUARDED_BY(control) = false;
    std::atomic<Os::ThreadRecord*> record{nullptr}; // set once, by Start
    std::atomic<std::int32_t> state{ThreadState::Unstarted};
};
} // namespace Nfx::System::Threading
