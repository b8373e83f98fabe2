#include "Discovery/DiscoveryWorker.h"

#include "Discovery/DiscoveryLogger.h"
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
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadPriority;
using Nfx::System::Threading::ThreadState;

namespace
{
constexpr std::int32_t PatienceMilliseconds = 5000;

const SmartPointer<IDiscoverySocket>& NotNull(const SmartPointer<IDiscoverySocket>& socket)
{
    if (socket.IsNull())
    {
        throw ArgumentNullException("Sources/DiscoveryWorker", __LINE__);
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
    , channel(name)
    , thread(new Thread(work))
    , priority(priority)
{
}

void DiscoveryWorker::Start()
{
    thread->SetName(name);
    thread->Start();
    thread->SetPriority(priority);
}

void DiscoveryWorker::Stop()
{
    Log("Stopping worker", LogStreamLevel::Critical);
    try
    {
        socket->Shutdown();
        socket->Close();
    }
    catch (const ObjectClosedException& exception)
    {
        Log("Socket already closed", exception);
    }
    if (thread->GetThreadState() != ThreadState::Unstarted)
    {
        if (!thread->Join(PatienceMilliseconds))
        {
            Log("Still waiting for the worker, or for a callback that it called, to return", LogStreamLevel::Critical);
            thread->Join();
        }
    }
    Log("Worker stopped", LogStreamLevel::Critical);
}

Event<EventArgs>& DiscoveryWorker::SocketClosed()
{
    return socketClosed;
}

Event<EventArgs>& DiscoveryWorker::StopAsked()
{
    return stopAsked;
}

bool DiscoveryWorker::HasLostSocket() const noexcept
{
    return lostSocket;
}

IDiscoverySocket& DiscoveryWorker::Socket() const
{
    return *socket;
}

void DiscoveryWorker::Log(const String& message, const LogStreamLevel& level) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, level);
}

void DiscoveryWorker::Log(const String& message, const Exception& exception) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, exception);
}

void DiscoveryWorker::LogLastResort(const char* message, const Exception& exception) const noexcept
{
    DiscoveryLogger::GetInstance().LogLastResort(channel, message, exception);
}

void DiscoveryWorker::RaiseSocketClosed()
{
    if (stopRequested)
    {
        return;
    }
    lostSocket = true;
    socketClosed.Raise(this, EventArgs::Empty());
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
