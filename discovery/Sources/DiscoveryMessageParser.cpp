#include "Discovery/DiscoveryMessageParser.h"

#include "Discovery/ServiceThread.h"
#include "system/DelegateImpl.h"
#include "system/Threading/ThreadPriority.h"
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
using Nfx::System::Threading::Thread;
using Nfx::System::Threading::ThreadPriority;
using Nfx::System::Threading::ThreadState;

DiscoveryMessageParser::DiscoveryMessageParser(const String& name)
    : name(name)
    , log(name)
    , thread(new Thread(MakeDelegate(*this, &DiscoveryMessageParser::Run)))
{
}

void DiscoveryMessageParser::Start()
{
    thread->SetName(name);
    thread->Start();
    // A burst of datagrams is lost to a full queue sooner than to slow callbacks. Best effort, as every priority is.
    thread->SetPriority(ThreadPriority::AboveNormal);
}

void DiscoveryMessageParser::Stop()
{
    Log().Write("Stopping message parser", LogStreamLevel::Critical);
    stopRequested = true;
    try
    {
        pending.Close();
    }
    catch (const Exception& exception)
    {
        Log().Write("Semaphore error", exception);
        throw;
    }
    if (thread->GetThreadState() != ThreadState::Unstarted)
    {
        thread->Join();
    }
    Log().Write("---Message parser stopped---", LogStreamLevel::Critical);
}

void DiscoveryMessageParser::Enqueue(const SmartPointer<Datagram>& datagram)
{
    if (!pending.TryAdd(datagram))
    {
        Log().Write("Semaphore is full (" + Int32(MaximumPending + 1).ToString() + ") !!! Ignoring this datagram...",
                    LogStreamLevel::Critical);
    }
}

std::int32_t DiscoveryMessageParser::PendingCount() const
{
    return pending.Count();
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
    SmartPointer<Datagram> datagram;
    if (pending.TryTake(datagram))
    {
        Process(datagram);
    }
    else
    {
        Log().Guard("Error while waiting for messages", [this] { pending.Await(); });
    }
}

void DiscoveryMessageParser::Process(const SmartPointer<Datagram>& datagram)
{
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
} // namespace Zent::Discovery
