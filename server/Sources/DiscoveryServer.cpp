#include "Server/DiscoveryServer.h"

#include "Discovery/DiscoveryPorts.h"
#include "Discovery/DiscoverySocketUdpClient.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "system/Threading/Lock.h"

namespace Zent::Discovery::Server
{
using Nfx::System::EventArgs;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Threading::Lock;

/// The components of a server that is gone, whose threads could not be ended.
struct DiscoveryServer::Leftovers final
{
    SmartPointer<DiscoveryServerMessageParser> Parser;
    SmartPointer<DiscoveryReceiver> Receiver;
    SmartPointer<DiscoveryServerTaskProcessor> TaskProcessor;
};

DiscoveryServer::DiscoveryServer()
    : log("Discovery Server")
    , leftovers(new Leftovers())
    , restart(*this, log)
{
}

DiscoveryServer::~DiscoveryServer()
{
    bool isStopped = false;
    log.Guard("Failed to stop what was still running", [&] {
        AutomaticRestart::Cancellation cancellation(restart);
        const Lock lock(lifecycleLock);
        cancellation.Cancel();
        state = DiscoveryServiceState::Stopping; // a loss from here on is none to restart for
        isStopped = StopLeftover(receiver);
        isStopped = StopLeftover(parser) && isStopped;
        isStopped = StopLeftover(taskProcessor) && isStopped;
    });
    if (!isStopped)
    {
        log.Guard("Failed to part from what still runs", [this] { DisconnectComponents(); });
        *leftovers = {parser, receiver, taskProcessor};
        static_cast<void>(leftovers.release()); // their threads may still use them: a leak is the lesser evil
    }
}

void DiscoveryServer::Start()
{
    Start(HostRegistrations());
}

void DiscoveryServer::Start(const HostRegistrations& registrations)
{
    const Lock lock(lifecycleLock);
    LogStart();
    if (IsStartingOrRunning())
    {
        log.Write("Server's current state : " + DiscoveryServiceState(state).ToString() + " ! -> Starting aborted.",
                  LogStreamLevel::Critical);
        if (!taskProcessor.IsNull())
        {
            taskProcessor->Install(registrations);
        }
        return;
    }
    if (restart.IsWaiting())
    {
        StopComponents(); // those that the restart could not stop
        StartOrWaitAgain(OpenSocket(), registrations);
    }
    else
    {
        StartLocked(nullptr, registrations);
    }
}

bool DiscoveryServer::RestartFor(const AutomaticRestart::Recovery& recovery, std::int32_t secondsToNextTry)
{
    bool isThrough = false;
    log.Guard("Restart failed", [&] {
        const String delay = Int32(secondsToNextTry).ToString() + " s";
        const String failure = "Restart failed, trying again in " + delay;
        const String noSocket = "No socket for the restart yet, trying again in " + delay;
        log.Guard(failure.CString(), [&] { isThrough = TryToRestart(recovery, noSocket); });
    });
    return isThrough;
}

bool DiscoveryServer::TryToRestart(const AutomaticRestart::Recovery& recovery, const String& noSocket)
{
    const Lock lock(lifecycleLock);
    if (!restart.BeginTry(recovery, IsRunning()))
    {
        return true;
    }
    if (IsRunning())
    {
        StopLocked();
    }
    else
    {
        StopComponents(); // those that the last try could not stop
    }
    SmartPointer<IDiscoverySocket> openSocket;
    if (!log.Guard(noSocket.CString(), [&] { openSocket = OpenSocket(); }))
    {
        return false;
    }
    LogStart();
    StartOrWaitAgain(openSocket, restart.CarriedOver());
    return true;
}

void DiscoveryServer::LogStart() const
{
    log.Write(String("Starting Discovery Server service (") + DiscoveryMessage::ProtocolVersionText + ")",
              LogStreamLevel::Critical);
}

bool DiscoveryServer::IsStartingOrRunning() const noexcept
{
    return state == DiscoveryServiceState::Starting || state == DiscoveryServiceState::Running;
}

void DiscoveryServer::StartLocked(const SmartPointer<IDiscoverySocket>& openSocket,
                                  const HostRegistrations& registrations)
{
    state = DiscoveryServiceState::Starting;
    if (componentsMustBeCreated)
    {
        CreateComponents(openSocket.IsNull() ? OpenSocket() : openSocket, registrations);
        componentsMustBeCreated = false;
    }
    restart.Watch(); // before the threads start: a loss while they do is one to answer
    StartWorkers();
    restart.Settle();
    state = DiscoveryServiceState::Running;
}

void DiscoveryServer::StartOrWaitAgain(const SmartPointer<IDiscoverySocket>& openSocket,
                                       const HostRegistrations& registrations)
{
    try
    {
        StartLocked(openSocket, registrations);
    }
    catch (...) // it goes on
    {
        restart.WaitAgain();
        StopComponents();
        throw;
    }
}

void DiscoveryServer::StartWorkers()
{
    taskProcessor->Start();
    parser->Start();
    receiver->Start();
}

void DiscoveryServer::CreateComponents(const SmartPointer<IDiscoverySocket>& newSocket,
                                       const HostRegistrations& registrations)
{
    const SmartPointer<DiscoveryServerTaskProcessor> newTaskProcessor(new DiscoveryServerTaskProcessor(newSocket));
    const SmartPointer<DiscoveryServerMessageParser> newParser(new DiscoveryServerMessageParser());
    const SmartPointer<DiscoveryReceiver> newReceiver(new DiscoveryReceiver(newSocket, newParser));

    newParser->ActionReady().Add(
        MakeDelegate<DiscoveryTaskProcessor>(*newTaskProcessor, &DiscoveryTaskProcessor::Enqueue));
    newReceiver->SocketClosed().Add(MakeDelegate(*this, &DiscoveryServer::AsynchronousRestart));
    newTaskProcessor->SocketClosed().Add(MakeDelegate(*this, &DiscoveryServer::AsynchronousRestart));
    newReceiver->StopAsked().Add(MakeDelegate(*this, &DiscoveryServer::AsynchronousStop));
    newTaskProcessor->StopAsked().Add(MakeDelegate(*this, &DiscoveryServer::AsynchronousStop));
    newTaskProcessor->Install(registrations);

    const Lock lock(componentsLock);
    if (const SmartPointer<IBroadcastProvider> provider = restart.CarriedOverProvider(); !provider.IsNull())
    {
        newTaskProcessor->SetBroadcastProvider(provider); // the newest one, which may have come just now
    }
    socket = newSocket;
    taskProcessor = newTaskProcessor;
    parser = newParser;
    receiver = newReceiver;
}

SmartPointer<IDiscoverySocket> DiscoveryServer::OpenSocket() const
{
    const SmartPointer<DiscoveryPorts>& ports = DiscoveryPorts::GetInstance();
    const bool isShared = Socket::IsPortUsed(ports->ServerPort());
    SmartPointer<IDiscoverySocket> opened(new DiscoverySocketUdpClient(ports->ServerPort(), ports->ClientPort()));
    if (isShared)
    {
        log.Write("Another socket on this machine is bound to port " + ports->ServerPort().ToString() +
                      " : answers of devices go to only one of them.",
                  LogStreamLevel::Critical);
    }
    return opened;
}

void DiscoveryServer::Stop()
{
    AutomaticRestart::Cancellation cancellation(restart);
    const Lock lock(lifecycleLock);
    CancelRestart(cancellation);
    StopLocked();
}

void DiscoveryServer::StopIfRunning()
{
    AutomaticRestart::Cancellation cancellation(restart);
    const Lock lock(lifecycleLock); // when another thread stops the server, this one returns after it, too
    CancelRestart(cancellation);
    if (state == DiscoveryServiceState::Running)
    {
        taskProcessor->ClearHandlers();
        StopLocked();
    }
}

void DiscoveryServer::CancelRestart(AutomaticRestart::Cancellation& cancellation)
{
    const bool isHalfStopped = restart.IsWaiting() && state == DiscoveryServiceState::Stopping;
    cancellation.Cancel();
    if (isHalfStopped)
    {
        taskProcessor->ClearHandlers();
        StopComponents();
    }
}

void DiscoveryServer::StopFor(const AutomaticRestart::Recovery& recovery)
{
    const Lock lock(lifecycleLock);
    if (!recovery.IsOverWithin(0) && IsRunning())
    {
        StopLocked();
    }
}

void DiscoveryServer::StopLocked()
{
    log.Write("Stopping Discovery Server service", LogStreamLevel::Critical);
    if (state != DiscoveryServiceState::Running)
    {
        log.Write("Client's current state : " + DiscoveryServiceState(state).ToString() + " ! -> Stopping aborted.",
                  LogStreamLevel::Critical);
        return;
    }
    StopComponents();
    log.Write("Discovery Server stopped", LogStreamLevel::Critical);
}

void DiscoveryServer::StopComponents()
{
    if (!receiver.IsNull()) // all are there or none
    {
        state = DiscoveryServiceState::Stopping;
        receiver->Stop();
        parser->Stop();
        taskProcessor->Stop();
        ReleaseComponents();
    }
    componentsMustBeCreated = true;
    state = DiscoveryServiceState::Stopped;
}

void DiscoveryServer::DisconnectComponents()
{
    parser->ActionReady().Clear();
    receiver->SocketClosed().Clear();
    receiver->StopAsked().Clear();
    taskProcessor->SocketClosed().Clear();
    taskProcessor->StopAsked().Clear();
}

void DiscoveryServer::ReleaseComponents()
{
    DisconnectComponents();

    // They go at the end of this function, without the lock: their queues may be long.
    const SmartPointer<IDiscoverySocket> formerSocket = socket;
    const SmartPointer<DiscoveryServerTaskProcessor> formerTaskProcessor = taskProcessor;
    const SmartPointer<DiscoveryServerMessageParser> formerParser = parser;
    const SmartPointer<DiscoveryReceiver> formerReceiver = receiver;
    {
        const Lock lock(componentsLock);
        if (restart.IsWaiting())
        {
            restart.CarryOver(taskProcessor->Registrations());
        }
        receiver = nullptr;
        parser = nullptr;
        taskProcessor = nullptr;
        socket = nullptr;
    }
    log.Guard("Discarded what was still queued",
              [&] { LogDiscarded(formerTaskProcessor->PendingCount(), formerParser->PendingCount()); });
}

void DiscoveryServer::LogDiscarded(std::int32_t tasks, std::int32_t datagrams) const
{
    if (tasks > 0 || datagrams > 0)
    {
        log.Write("Discarded what was still queued : " + Int32(tasks).ToString() + " tasks, " +
                      Int32(datagrams).ToString() + " datagrams.",
                  LogStreamLevel::Critical);
    }
}

template <class TWorker>
bool DiscoveryServer::StopLeftover(const SmartPointer<TWorker>& worker)
{
    return worker.IsNull() || log.Guard("Failed to stop what was still running", [&] { worker->Stop(); });
}

bool DiscoveryServer::HasFailed() const
{
    const Lock lock(lifecycleLock);
    return (state == DiscoveryServiceState::Starting || state == DiscoveryServiceState::Stopping) &&
           !restart.IsWaiting();
}

bool DiscoveryServer::IsRunning() const noexcept
{
    return state == DiscoveryServiceState::Running;
}

void DiscoveryServer::Discover()
{
    log.Write("Discover", LogStreamLevel::Standard);
    Queue(SmartPointer<SendAllSendYourSignatureAction>::Create());
}

void DiscoveryServer::ChangeIPConfigurations(
    const SmartPointer<SendChangeYourIPConfigAction::NICConfigList>& nicConfigs)
{
    log.Write("Change IP configs", LogStreamLevel::Standard);
    Queue(SmartPointer<SendChangeYourIPConfigAction>::Create(nicConfigs));
}

void DiscoveryServer::ChangeHostName(const String& newHostName, const MACAddress& macAddress)
{
    log.Write("Change HostName to " + newHostName + " (" + macAddress.ToString() + ")", LogStreamLevel::Standard);
    Queue(SmartPointer<SendChangeYourHostNameAction>::Create(newHostName, macAddress));
}

void DiscoveryServer::ChangeHostName(const String& newHostName, const IPAddress& ipAddress)
{
    log.Write("Change HostName to " + newHostName + " (" + ipAddress.ToString() + ")", LogStreamLevel::Standard);
    Queue(SmartPointer<SendChangeYourHostNameAction>::Create(newHostName, ipAddress));
}

void DiscoveryServer::RefreshClient(const MACAddress& macAddress)
{
    log.Write("Refresh Client owning " + macAddress.ToString(), LogStreamLevel::Standard);
    Queue(SmartPointer<SendSendYourSignatureAction>::Create(macAddress));
}

void DiscoveryServer::ReachClient(const IPAddress& ipAddress)
{
    log.Write("Reach Client " + ipAddress.ToString(), LogStreamLevel::Standard);
    Queue(SmartPointer<SendSendYourSignatureAction>::Create(ipAddress));
}

void DiscoveryServer::Queue(const SmartPointer<ServerAction>& action)
{
    TaskProcessor()->Enqueue(this, ServerActionArgs(action));
}

SmartPointer<DiscoveryServerTaskProcessor> DiscoveryServer::TaskProcessor() const
{
    const Lock lock(componentsLock);
    return taskProcessor;
}

void DiscoveryServer::SetBroadcastProvider(const SmartPointer<IBroadcastProvider>& provider)
{
    {
        const Lock lock(componentsLock);
        if (!taskProcessor.IsNull())
        {
            taskProcessor->SetBroadcastProvider(provider);
            return;
        }
        if (restart.TryCarryOver(provider))
        {
            return;
        }
    }
    log.Write("Broadcast provider not installed : the server has not been started.", LogStreamLevel::Standard);
}

void DiscoveryServer::AsynchronousRestart(Object*, const EventArgs&)
{
    restart.Report(AutomaticRestart::Kind::Restart);
}

void DiscoveryServer::AsynchronousStop(Object*, const EventArgs&)
{
    restart.Report(AutomaticRestart::Kind::Stop);
}
} // namespace Zent::Discovery::Server
