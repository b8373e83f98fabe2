#include "System/Threading/ThreadData.h"

#include "Os/IOs.h"
#include "Os/IThread.h"
#include "System/Threading/ThreadRegistry.h"
#include "system/Exceptions.h"
#include "system/Threading/Lock.h"

#include <cxxabi.h>
#include <list>
#include <utility>

namespace Nfx::System::Threading
{
namespace
{
// Enough for what the library does on a thread; the platforms' own defaults would use up a 32-bit host's addresses.
constexpr std::uint32_t StackSize = 1024 * 1024;

constinit thread_local Thread::ThreadData* currentThread = nullptr;

Os::IThread& Threads()
{
    return Os::Platform().Thread();
}
} // namespace

/// From the first step of the running thread to its last, whichever way the delegate is left.
class Thread::ThreadData::Life final
{
public:
    explicit Life(ThreadData& data) noexcept
        : data(data)
    {
        currentThread = &data;
    }

    ~Life()
    {
        const SmartPointer<ThreadData> last(data.End()); // may be the last to let go of the data
        currentThread = nullptr;
    }

    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

private:
    ThreadData& data;
};

Thread::ThreadData::Waiting::Waiting(ThreadData& data) noexcept
    : data(data)
{
    data.Change(0, ThreadState::WaitSleepJoin);
}

Thread::ThreadData::Waiting::~Waiting()
{
    data.Change(ThreadState::WaitSleepJoin, 0);
}

Thread::ThreadData::ThreadData(const SmartPointer<Delegate<>>& start,
                               const SmartPointer<Delegate<Object*>>& startWithParameter)
    : start(start)
    , startWithParameter(startWithParameter)
{
}

Thread::ThreadData::~ThreadData()
{
    Os::ThreadRecord* const closed = record.load();
    if (closed != nullptr)
    {
        Threads().Close(closed);
    }
}

Thread::ThreadData* Thread::ThreadData::Current() noexcept
{
    return currentThread;
}

bool Thread::ThreadData::IsCurrent() const noexcept
{
    return currentThread == this;
}

bool Thread::ThreadData::TakesParameter() const
{
    return startWithParameter != nullptr;
}

Thread::ThreadData::StartResult Thread::ThreadData::Start(const SmartPointer<ThreadData>& alias, Object* startParameter)
{
    ThreadRegistry& registry = ThreadRegistry::Instance();
    std::list<ThreadRegistry::Entry> entry(1); // takes its memory while the start can still fail
    const Lock lock(control);                  // the new thread may end at once, but not before all of this is done
    if (!Has(ThreadState::Unstarted))
    {
        return StartResult::WrongState;
    }
    self = alias;
    parameter = startParameter;
    Change(ThreadState::Unstarted, 0);
    Os::ThreadRecord* const created = Threads().Create(&ThreadData::Run, this, id, StackSize);
    if (created == nullptr)
    {
        Change(0, ThreadState::Unstarted);
        self = nullptr;
        return StartResult::NoThread;
    }
    record.store(created);
    entry.front() = {id, self};
    registry.Add(entry);
    ApplyName();
    if (priority != ThreadPriority::Normal)
    {
        ApplyPriority();
    }
    if (isInterruptedAtStart)
    {
        Threads().Interrupt(created);
    }
    return StartResult::Started;
}

std::uint32_t Thread::ThreadData::Run(void* data)
{
    ThreadData& running = *static_cast<ThreadData*>(data);
    const Life life(running);
    running.InvokeDelegate();
    return 0;
}

void Thread::ThreadData::InvokeDelegate()
{
    try
    {
        if (start != nullptr)
        {
            start->Invoke();
        }
        else
        {
            startWithParameter->Invoke(TakeParameter());
        }
    }
    catch (const AbortSignal&)
    {
        // the state tells
    }
    catch (abi::__forced_unwind&)
    {
        throw; // the platform ends the thread and must get through
    }
    catch (...)
    {
        // past a thread's edge it would end the process; whoever wants to know of it catches it in the delegate
    }
}

Object* Thread::ThreadData::TakeParameter()
{
    const Lock lock(control);
    return std::exchange(parameter, nullptr);
}

SmartPointer<Thread::ThreadData> Thread::ThreadData::End()
{
    const Lock lock(control);
    if (hasEnded)
    {
        return nullptr;
    }
    hasEnded = true;
    ThreadRegistry::Instance().Remove(*this);
    const std::int32_t end = Has(ThreadState::AbortRequested) ? ThreadState::Aborted : ThreadState::Stopped;
    Change(~ThreadState::Background, end);
    return std::move(self);
}

// A thread that was ended by force could not do it itself.
void Thread::ThreadData::CollectTerminated()
{
    Os::ThreadRecord* const aborted = Has(ThreadState::AbortRequested) ? record.load() : nullptr;
    if (aborted != nullptr && Threads().Wait(aborted, 0))
    {
        End();
    }
}

bool Thread::ThreadData::Join(std::int32_t timeout)
{
    Os::ThreadRecord* const joined = RecordOfStarted();
    if (joined == nullptr)
    {
        return true; // aborted before it was started
    }
    const bool ended = Block(timeout, [joined](std::int32_t time) { return Threads().Wait(joined, time); });
    if (ended)
    {
        End(); // where the platform's thread has ended past this class, it has not done so itself
    }
    return ended;
}

// Only Start's caller sees a thread that is no longer unstarted and has no record yet.
Os::ThreadRecord* Thread::ThreadData::RecordOfStarted() const
{
    const Lock lock(control);
    return record.load();
}

void Thread::ThreadData::Interrupt()
{
    const Lock lock(control);
    if (Has(ThreadState::Unstarted))
    {
        isInterruptedAtStart = true;
    }
    else if (!hasEnded)
    {
        Threads().Interrupt(record.load());
    }
}

bool Thread::ThreadData::Suspend()
{
    const Lock lock(control);
    if (hasEnded || Has(ThreadState::Unstarted))
    {
        return false;
    }
    if (Has(ThreadState::Suspended))
    {
        return true;
    }
    Change(0, ThreadState::SuspendRequested);
    const bool suspended = Threads().Suspend(record.load());
    Change(ThreadState::SuspendRequested, suspended ? ThreadState::Suspended : 0);
    return suspended;
}

bool Thread::ThreadData::Resume()
{
    const Lock lock(control);
    if (!Has(ThreadState::Suspended) || !Threads().Resume(record.load()))
    {
        return false;
    }
    Change(ThreadState::Suspended, 0);
    return true;
}

bool Thread::ThreadData::Abort()
{
    {
        const Lock lock(control);
        if (hasEnded)
        {
            return true;
        }
        if (Has(ThreadState::Suspended))
        {
            return false;
        }
        if (Has(ThreadState::Unstarted))
        {
            hasEnded = true;
            Change(ThreadState::Unstarted, ThreadState::Aborted);
            return true;
        }
        Change(0, ThreadState::AbortRequested);
        if (!IsCurrent())
        {
            Threads().Terminate(record.load(), 0);
        }
    }
    if (IsCurrent())
    {
        throw AbortSignal();
    }
    CollectTerminated();
    return true;
}

ThreadState Thread::ThreadData::GetState()
{
    CollectTerminated();
    return state.load();
}

void Thread::ThreadData::SetBackground(bool isBackground)
{
    const Lock lock(control);
    Change(ThreadState::Background, isBackground ? ThreadState::Background : 0);
}

ThreadPriority Thread::ThreadData::GetPriority() const
{
    const Lock lock(control);
    std::int32_t granted = priority;
    Os::ThreadRecord* const running = hasEnded ? nullptr : record.load();
    if (running != nullptr && Threads().GetPriority(running, granted))
    {
        return granted;
    }
    return priority;
}

bool Thread::ThreadData::SetPriority(const ThreadPriority& newPriority)
{
    const Lock lock(control);
    priority = ThreadPriority::IsDefined(newPriority) ? std::int32_t{newPriority} : ThreadPriority::Normal;
    return ApplyPriority();
}

bool Thread::ThreadData::ApplyPriority()
{
    Os::ThreadRecord* const running = hasEnded ? nullptr : record.load();
    return running == nullptr || Threads().SetPriority(running, priority);
}

void Thread::ThreadData::SetName(const String& newName)
{
    const Lock lock(control);
    name = newName;
    ApplyName();
}

void Thread::ThreadData::ApplyName()
{
    Os::ThreadRecord* const running = hasEnded ? nullptr : record.load();
    if (running != nullptr && !name.IsEmpty())
    {
        Threads().SetName(running, name.CString());
    }
}

std::uint64_t Thread::ThreadData::GetId() const
{
    const Lock lock(control);
    return id;
}

void Thread::ThreadData::ThrowIfAborted() const
{
    if (Has(ThreadState::AbortRequested))
    {
        throw AbortSignal();
    }
}

void Thread::ThreadData::ThrowIfWoken() const
{
    if (Threads().TakeInterrupt())
    {
        ThrowIfAborted();
        ThrowInterrupted();
    }
}

bool Thread::ThreadData::Has(std::int32_t flags) const noexcept
{
    return (state.load() & flags) != 0;
}

void Thread::ThreadData::Change(std::int32_t cleared, std::int32_t set) noexcept
{
    std::int32_t before = state.load();
    while (!state.compare_exchange_weak(before, (before & ~cleared) | set))
    {
        // another flag changed meanwhile
    }
}
} // namespace Nfx::System::Threading
