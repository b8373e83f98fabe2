#include "Server/BackgroundOperation.h"

#include "system/DelegateImpl.h"
#include "system/Threading/Lock.h"
#include "system/Threading/ThreadState.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Exception;
using Nfx::System::MakeDelegate;
using Nfx::System::SmartPointer;
using Nfx::System::Threading::EventResetMode;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadState;

BackgroundOperation::BackgroundOperation(const SmartPointer<Body>& body)
    : body(body)
    , cancelled(false, EventResetMode::ManualReset)
{
}

bool BackgroundOperation::Post(const Request& newRequest)
{
    const Lock guard(lock);
    if (suspensions > 0)
    {
        return false;
    }
    if (!isActive)
    {
        // A thread that has run cannot run again; a former one has nothing left to do but to end.
        if (!thread.IsNull() && thread->GetThreadState() != ThreadState::Unstarted)
        {
            thread->Join();
        }
        thread = new Thread(MakeDelegate(*this, &BackgroundOperation::Run));
        thread->SetName("Background");
        thread->Start();
        isActive = true;
    }
    request = newRequest;
    hasRequest = true;
    return true;
}

bool BackgroundOperation::IsCancelledWithin(std::int32_t milliseconds)
{
    cancelled.WaitOne(milliseconds);
    const Lock guard(lock);
    return suspensions > 0;
}

void BackgroundOperation::Run()
{
    Request taken{};
    while (TakeRequest(taken))
    {
        body->Invoke(taken);
    }
}

bool BackgroundOperation::TakeRequest(Request& taken)
{
    const Lock guard(lock);
    isActive = hasRequest;
    taken = request;
    hasRequest = false;
    return isActive;
}

void BackgroundOperation::Suspend()
{
    SmartPointer<Thread> running;
    {
        const Lock guard(lock);
        ++suspensions;
        hasRequest = false;
        running = thread;
    }
    try
    {
        cancelled.Set();
        if (!running.IsNull() && running->GetThreadState() != ThreadState::Unstarted)
        {
            running->Join();
        }
    }
    catch (const Exception&)
    {
        Resume(); // the caller gets no suspension that could end
        throw;
    }
}

void BackgroundOperation::Resume() noexcept
{
    const Lock guard(lock);
    if (--suspensions > 0)
    {
        return;
    }
    try
    {
        cancelled.Reset();
    }
    catch (const Exception&)
    {
        // Then restarts do without their pauses.
    }
}

BackgroundOperation::Suspension::Suspension(BackgroundOperation& operation)
    : operation(operation)
{
    operation.Suspend();
}

BackgroundOperation::Suspension::~Suspension()
{
    operation.Resume();
}
} // namespace Zent::Discovery::Server
