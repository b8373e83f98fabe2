#include "system/Threading/Thread.h"

#include "Os/IOs.h"
#include "Os/IThread.h"
#include "System/Threading/ThreadData.h"
#include "System/Threading/ThreadRegistry.h"
#include "system/Exceptions.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Thread";

template <class TDelegate>
const SmartPointer<TDelegate>& NotNull(const SmartPointer<TDelegate>& start)
{
    if (start == nullptr)
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    return start;
}

void RequireTimeout(std::int32_t timeout)
{
    if (timeout < -1)
    {
        throw ArgumentException(SourceName, __LINE__);
    }
}

void RequireState(bool isRight)
{
    if (!isRight)
    {
        throw ThreadStateException(SourceName, __LINE__);
    }
}

void RequireOther(bool isCurrent)
{
    if (isCurrent)
    {
        throw InvalidOperationException(SourceName, __LINE__);
    }
}
} // namespace

void Thread::ThreadData::ThrowWaitFailure()
{
    throw IO::IOException(SourceName, __LINE__);
}

void Thread::ThreadData::ThrowInterrupted()
{
    throw ThreadInterruptedException(SourceName, __LINE__);
}

Thread::Thread(const SmartPointer<Delegate<>>& start)
    : data(new ThreadData(NotNull(start), nullptr))
{
}

Thread::Thread(const SmartPointer<Delegate<Object*>>& start)
    : data(new ThreadData(nullptr, NotNull(start)))
{
}

Thread::~Thread() = default;

void Thread::Start()
{
    StartWith(nullptr);
}

void Thread::Start(Object* parameter)
{
    if (!data->TakesParameter())
    {
        throw InvalidOperationException(SourceName, __LINE__);
    }
    StartWith(parameter);
}

void Thread::StartWith(Object* parameter)
{
    const ThreadData::StartResult result = data->Start(data, parameter);
    RequireState(result != ThreadData::StartResult::WrongState);
    if (result == ThreadData::StartResult::NoThread)
    {
        throw OutOfMemoryException(SourceName, __LINE__);
    }
}

void Thread::Join()
{
    Join(-1);
}

Boolean Thread::Join(Int32 timeout)
{
    RequireTimeout(timeout);
    RequireOther(data->IsCurrent());
    RequireState((data->GetState() & ThreadState::Unstarted) == 0);
    return data->Join(timeout);
}

void Thread::Sleep(Int32 milliseconds)
{
    RequireTimeout(milliseconds);
    Os::IThread& threads = Os::Platform().Thread();
    ThreadData::Block(milliseconds, [&threads](std::int32_t time) {
        if (time == 0)
        {
            threads.Sleep(0);
        }
        else
        {
            threads.Pause(time);
        }
        return false; // there is nothing to get
    });
}

void Thread::Interrupt()
{
    data->Interrupt();
}

void Thread::Suspend()
{
    RequireOther(data->IsCurrent());
    RequireState(data->Suspend());
}

void Thread::Resume()
{
    RequireState(data->Resume());
}

void Thread::Abort()
{
    RequireState(data->Abort());
}

ThreadState Thread::GetThreadState() const
{
    return data->GetState();
}

ThreadPriority Thread::GetPriority() const
{
    return data->GetPriority();
}

Boolean Thread::SetPriority(const ThreadPriority& priority)
{
    return data->SetPriority(priority);
}

void Thread::SetBackground(Boolean isBackground)
{
    data->SetBackground(isBackground);
}

void Thread::SetName(const String& name)
{
    data->SetName(name);
}

UInt64 Thread::GetThreadId() const
{
    return data->GetId();
}

UInt64 Thread::CurrentThreadId()
{
    return Os::Platform().Thread().CurrentThreadId();
}

Collections::Generic::List<UInt64> Thread::RunningThreadIds()
{
    return ThreadRegistry::Instance().Ids();
}
} // namespace Nfx::System::Threading
