#include "Discovery/DiscoveryMessageParser.h"

#include "Discovery/DiscoveryLogger.h"
#include "Discovery/ServiceThread.h"
#include "system/DelegateImpl.h"
#include "system/Threading/Lock.h"
#include "system/Threading/ThreadState.h"

#include <exception>

namespace Zent::Discovery
{
namespace ErrorCodes = Nfx::System::ErrorCodes;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::OutOfMemoryException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadState;

DiscoveryMessageParser::DiscoveryMessageParser(const String& name)
    : name(name)
    , channel(name)
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
    Log("Stopping message parser", LogStreamLevel::Critical);
    if (!stopRequested.exchange(true))
    {
        try
        {
            semaphore.Release();
        }
        catch (const Exception& exception)
        {
            Log("Semaphore error", exception);
            throw;
        }
    }
    if (thread->GetThreadState() != ThreadState::Unstarted)
    {
        thread->Join();
    }
    Log("---Message parser stopped---", LogStreamLevel::Critical);
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
    Log("Semaphore is full (" + Int32(MaximumPending + 1).ToString() + ") !!! Ignoring this datagram...",
        LogStreamLevel::Critical);
}

std::int32_t DiscoveryMessageParser::PendingCount() const
{
    const Lock lock(pending.SyncRoot());
    return static_cast<std::int32_t>(pending.Count());
}

void DiscoveryMessageParser::Log(const String& message, const LogStreamLevel& level) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, level);
}

void DiscoveryMessageParser::Log(const String& message, const Exception& exception) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, exception);
}

void DiscoveryMessageParser::Run()
{
    const ServiceThread mark;
    Log("---Waiting for messages...", LogStreamLevel::Critical);
    do
    {
        ProcessNextGuarded();
    } while (!stopRequested);
}

void DiscoveryMessageParser::ProcessNextGuarded() noexcept
{
    static const char Failed[] = "Error while parsing/processing message";
    try
    {
        ProcessNext();
    }
    catch (const Exception& exception)
    {
        DiscoveryLogger::GetInstance().LogLastResort(channel, Failed, exception);
    }
    catch (const std::exception&) // memory is the only thing that can run out here
    {
        const OutOfMemoryException exception("Sources/DiscoveryMessageParser", __LINE__);
        DiscoveryLogger::GetInstance().LogLastResort(channel, Failed, exception);
    }
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
        Log("Invalid format : message dropped", LogStreamLevel::Critical);
    }
}

SmartPointer<Datagram> DiscoveryMessageParser::TakeNext()
{
    const Lock lock(pending.SyncRoot());
    return pending.Count() == 0 ? SmartPointer<Datagram>() : pending.Dequeue();
}
} // namespace Zent::Discovery
