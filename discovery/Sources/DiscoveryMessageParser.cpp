#include "Discovery/DiscoveryMessageParser.h"

#include "Discovery/ServiceThread.h"
#include "system/DelegateImpl.h"
#include "system/Threading/Lock.h"
#include "system/Threading/ThreadState.h"

namespace Zent::Discovery
{
namespace ErrorCodes = Nfx::System::ErrorCodes;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadState;

DiscoveryMessageParser::DiscoveryMessageParser(const String& name)
    : name(name)
    , log(name)
    , semaphore(0, MaximumPending + 1) // one place more than datagrams, for the permit of Stop
    , thread(new Thread(MakeDelegate(*this, &DiscoveryMessageParser::Run)))
{
}

void DiscoveryMessageParser::Start()
{
    thread->SetName(name);
    thread->Start();
}

void DiscoveryMessageParser::Stop()
{
    Log().Write("Stopping message parser", LogStreamLevel::Critical);
    stopRequested = true;
    if (!isStopPermitGiven.exchange(true))
    {
        try
        {
            semaphore.Release();
        }
        catch (const Exception& exception)
        {
            isStopPermitGiven = false;
            Log().Write("Semaphore error", exception);
            throw;
        }
    }
    if (thread->GetThreadState() != ThreadState::Unstarted)
    {
        thread->Join();
    }
    Log().Write("---Message parser stopped---", LogStreamLevel::Critical);
}

void DiscoveryMessageParser::Enqueue(const SmartPointer<Datagram>& datagram)
{
    {
        const Lock lock(pending.SyncRoot());
        if (pending.Count() < MaximumPending)
        {
            pending.Enqueue(datagram);
            semaphore.Release();
            return;
        }
    }
    Log().Write("Semaphore is full (" + Int32(MaximumPending + 1).ToString() + ") !!! Ignoring this datagram...",
                LogStreamLevel::Critical);
}

std::int32_t DiscoveryMessageParser::PendingCount() const
{
    const Lock lock(pending.SyncRoot());
    return static_cast<std::int32_t>(pending.Count());
}

void DiscoveryMessageParser::Run()
{
    const ServiceThread mark;
    Log().Write("---Waiting for messages...", LogStreamLevel::Critical);
    do
    {
        Log().Guard("Error while parsing/processing message", [this] { ProcessNext(); });
    } while (!stopRequested);
}

void DiscoveryMessageParser::ProcessNext()
{
    semaphore.WaitOne();
    const SmartPointer<Datagram> datagram = TakeNext();
    if (datagram.IsNull())
    {
        return;
    }
    try
    {
        ProcessDatagram(datagram);
    }
    catch (const Exception& exception)
    {
        if (exception.GetError().Code() != ErrorCodes::InvalidFormat)
        {
            throw;
        }
        Log().Write("Invalid format : message dropped", LogStreamLevel::Critical);
    }
}

SmartPointer<Datagram> DiscoveryMessageParser::TakeNext()
{
    const Lock lock(pending.SyncRoot());
    return pending.Count() == 0 ? SmartPointer<Datagram>() : pending.Dequeue();
}
} // namespace Zent::Discovery
