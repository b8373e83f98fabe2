#include "Server/DiscoveryTaskProcessor.h"

#include "Discovery/ServiceThread.h"
#include "Discovery/SocketFailure.h"
#include "system/Memory.h"
#include "system/Threading/Lock.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::Memory;
using Nfx::System::ObjectClosedException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::IO::IOException;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::Sockets::SocketException;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::ThreadPriority;
using std::chrono::steady_clock;

DiscoveryTaskProcessor::DiscoveryTaskProcessor(const SmartPointer<IDiscoverySocket>& socket, const String& name)
    : DiscoveryWorker(socket, name, MakeDelegate(*this, &DiscoveryTaskProcessor::Run), ThreadPriority::Normal)
{
}

void DiscoveryTaskProcessor::Enqueue(Object*, const ServerActionArgs& task)
{
    if (TryQueue(SmartPointer<ServerActionArgs>::Create(task.Action(), task.DatagramSize())))
    {
        waitingBytes += task.DatagramSize();
    }
    else
    {
        Log().Write("Semaphore is full (" + Int32(MaximumPending).ToString() + ") !!! Ignoring this task...",
                    LogStreamLevel::Critical);
    }
    Log().Guard("Task processor failed to report its end.", [this] { CheckThread(); }); // the next task repeats it
}

bool DiscoveryTaskProcessor::TryQueue(const SmartPointer<ServerActionArgs>& task)
{
    try
    {
        return tasks.TryAdd(task);
    }
    catch (const IOException& exception)
    {
        Log().Write("Task queued, but the processor not woken : it waits for the next one.", exception);
        return true;
    }
}

std::int32_t DiscoveryTaskProcessor::PendingCount() const
{
    return tasks.Count();
}

void DiscoveryTaskProcessor::Stop()
{
    RequestStop();
    tasks.Close();
    DiscoveryWorker::Stop();
}

SmartPointer<IBroadcastProvider> DiscoveryTaskProcessor::BroadcastProvider() const
{
    const Lock lock(providerLock);
    return provider;
}

void DiscoveryTaskProcessor::SetBroadcastProvider(const SmartPointer<IBroadcastProvider>& newProvider)
{
    const Lock lock(providerLock);
    provider = newProvider;
}

void DiscoveryTaskProcessor::Send(const DiscoveryMessage& message, const IPAddress& destination)
{
    const String text = message.ToJson();
    if (ComponentLog::IsEnabled(LogStreamLevel::Debug))
    {
        Log().Write("Message (JSON) : " + text, LogStreamLevel::Debug);
    }
    try
    {
        Transmit(text, destination);
        Log().Write("Message sent", LogStreamLevel::Standard);
    }
    catch (const SocketException& exception)
    {
        HandleSendError(exception);
    }
    catch (const ObjectClosedException& exception)
    {
        Log().Write("Message not sent : socket closed", exception);
        CheckSocket();
    }
}

void DiscoveryTaskProcessor::Run()
{
    const ServiceThread mark;
    Log().Write("---Waiting for tasks...", LogStreamLevel::Critical);
    while (!IsStopRequested())
    {
        Log().Guard("Error while processing task", [this] { ProcessNext(); });
    }
}

void DiscoveryTaskProcessor::ProcessNext()
{
    SmartPointer<ServerActionArgs> task;
    if (tasks.TryTake(task))
    {
        memoryReturn.Note(waitingBytes);
        waitingBytes -= task->DatagramSize();
        ProcessTask(*task);
    }
    else if (!tasks.Await(memoryReturn.DueIn(steady_clock::now())) && !IsStopRequested())
    {
        Memory::GiveBack();
        memoryReturn.Done(steady_clock::now());
    }
}

void DiscoveryTaskProcessor::Transmit(const String& text, const IPAddress& destination)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.CString());
    const auto count = static_cast<std::int32_t>(text.Length());
    const SmartPointer<IBroadcastProvider> current =
        destination == IPAddress::Broadcast() ? BroadcastProvider() : SmartPointer<IBroadcastProvider>();
    if (current.IsNull())
    {
        Socket().Send(bytes, count, destination);
        return;
    }
    Log().Write("Sending message using broadcast provider...", LogStreamLevel::Debug);
    current->Send(bytes, count);
}

void DiscoveryTaskProcessor::HandleSendError(const SocketException& exception)
{
    const SocketFailure failure = SocketFailure::OfSend(exception.GetSocketError());
    failure.Write(Log(), exception);
    if (failure.Result != SocketFailure::Outcome::Passing)
    {
        CheckSocket();
    }
}

void DiscoveryTaskProcessor::CheckSocket()
{
    if (!Socket().IsShutDown() || !Socket().IsClosed())
    {
        RaiseSocketClosed();
    }
}
} // namespace Zent::Discovery::Server
