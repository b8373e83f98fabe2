#include "Discovery/DiscoveryWorker.h"

#include "Discovery/Attempt.h"
#include "system/Net/Sockets/SocketException.h"
#include "system/Threading/ThreadState.h"

namespace Zent::Discovery
{
using Nfx::System::ArgumentNullException;
using Nfx::System::Delegate;
using Nfx::System::Event;
using Nfx::System::EventArgs;
using Nfx::System::Exception;
using Nfx::System::ObjectClosedException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::Sockets::SocketError;
using Nfx::System::Net::Sockets::SocketException;
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadPriority;
using Nfx::System::Threading::ThreadState;

namespace
{
const char SourceName[] = "Sources/DiscoveryWorker";

constexpr std::int32_t PatienceMilliseconds = 5000;

const SmartPointer<IDiscoverySocket>& NotNull(const SmartPointer<IDiscoverySocket>& socket)
{
    if (socket.IsNull())
    {
        throw ArgumentNullException(SourceName, __LINE__);
    }
    return socket;
}
} // namespace

DiscoveryWorker::DiscoveryWorker(const SmartPointer<IDiscoverySocket>& socket,
                                 const String& name,
                                 const SmartPointer<Delegate<>>& work,
                                 const ThreadPriority& priority)
    : socket(NotNull(socket))
    , name(name)
    , log(name)
    , thread(new Thread(work))
    , priority(priority)
{
}

void DiscoveryWorker::Start()
{
    thread->SetName(name);
    thread->Start();
    if (!thread->SetPriority(priority))
    {
        Log().Write("Thread priority " + priority.ToString() + " refused by the system.", LogStreamLevel::Debug);
    }
}

void DiscoveryWorker::Stop()
{
    Log().Write("Stopping worker", LogStreamLevel::Critical);
    Attempt([this] { EndSocket(); },
            [this](const Exception&) {
                Join(); // a socket that resists must not leave a thread behind
                throw;
            });
    Join();
    Log().Write("Worker stopped", LogStreamLevel::Critical);
}

void DiscoveryWorker::EndSocket()
{
    try
    {
        socket->Shutdown();
        socket->Close();
    }
    catch (const ObjectClosedException& exception)
    {
        Log().Write("Socket already closed", exception);
    }
    catch (const SocketException& exception)
    {
        socket->Close(); // wakes the thread, too
        if (exception.GetSocketError() != SocketError::NotSocket)
        {
            throw;
        }
        Log().Write("Socket already closed", exception); // by somebody else, under the handle
    }
}

void DiscoveryWorker::Join()
{
    if (thread->GetThreadState() == ThreadState::Unstarted || thread->Join(PatienceMilliseconds))
    {
        return;
    }
    Log().Write("Still waiting for the worker, or for a callback that it called, to return", LogStreamLevel::Critical);
    thread->Join();
}

Event<EventArgs>& DiscoveryWorker::SocketClosed()
{
    return socketClosed;
}

Event<EventArgs>& DiscoveryWorker::StopAsked()
{
    return stopAsked;
}

IDiscoverySocket& DiscoveryWorker::Socket() const
{
    return *socket;
}

void DiscoveryWorker::RaiseSocketClosed()
{
    if (!stopRequested)
    {
        socketClosed.Raise(this, EventArgs::Empty());
    }
}

void DiscoveryWorker::CheckThread()
{
    if (thread->GetThreadState() == ThreadState::Unstarted || thread->GetThreadId() == Thread::CurrentThreadId() ||
        !thread->Join(0) || stopRequested) // asked last: a stop may have ended the thread just now
    {
        return;
    }
    if (!isThreadGone.exchange(true))
    {
        Log().Write("A callback has ended the thread that it was called on.", LogStreamLevel::Critical);
    }
    RaiseSocketClosed(); // the restart comes with a new thread
}

bool DiscoveryWorker::IsStopRequested() const noexcept
{
    return stopRequested;
}

void DiscoveryWorker::RequestStop() noexcept
{
    stopRequested = true;
}
} // namespace Zent::Discovery
