#include "Server/DiscoveryServer.h"

#include "Discovery/DiscoveryPorts.h"
#include "Discovery/DiscoverySocketUdpClient.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Server/SendAllSendYourSignatureAction.h"
#include "Server/SendChangeYourHostNameAction.h"
#include "Server/SendSendYourSignatureAction.h"
#include "system/Threading/Lock.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Server
{
using Nfx::System::EventArgs;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Threading::Lock;

namespace
{
constexpr std::chrono::milliseconds RestartPace{1000};
constexpr std::int32_t FirstRetryDelayMilliseconds = 20; // most shortages are short
constexpr std::int32_t RetryDelayMilliseconds = 1000;
constexpr std::int32_t LongestRetryDelayMilliseconds = 10000;

SmartPointer<IDiscoverySocket> OpenSocket()
{
    const SmartPointer<DiscoveryPorts>& ports = DiscoveryPorts::GetInstance();
    return SmartPointer<IDiscoverySocket>(new DiscoverySocketUdpClient(ports->ServerPort(), ports->ClientPort()));
}
} // namespace

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
    , background(MakeDelegate(*this, &DiscoveryServer::RunBackground))
{
}

DiscoveryServer::~DiscoveryServer()
{
    bool isStopped = false;
    log.Guard("Failed to stop what was still running", [&] {
        const RestartBarrier barrier(*this);
        const Lock lock(lifecycleLock);
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

void DiscoveryServer::Start(const HostRegistrations& registrations)
{
    const Lock lock(lifecycleLock);
    {
        // The caller brings its handlers along; of what an interrupted restart has kept only the provider is missing.
        const Lock componentsGuard(componentsLock);
        HostRegistrations kept;
        kept.Provider = carriedOver.Provider;
        carriedOver = kept;
    }
    StartLocked(registrations);
}

void DiscoveryServer::StartLocked(const HostRegistrations& registrations)
{
    log.Write(String("Starting Discovery Server service (") + DiscoveryMessage::ProtocolVersionText + ")",
              LogStreamLevel::Critical);
    if (state == DiscoveryServiceState::Starting || state == DiscoveryServiceState::Running)
    {
        log.Write("Server's current state : " + DiscoveryServiceState(state).ToString() + " ! -> Starting aborted.",
                  LogStreamLevel::Critical);
        if (!taskProcessor.IsNull())
        {
            taskProcessor->Install(registrations);
        }
        return;
    }
    state = DiscoveryServiceState::Starting;
    ++run;
    if (componentsMustBeCreated)
    {
        CreateComponents(registrations);
        componentsMustBeCreated = false;
    }
    {
        // Before the workers start: a loss while they do is one to answer, not part of the operation that ends here.
        const Lock lock(asyncLock);
        asyncOperationPending = false;
    }
    StartWorkers();
    state = DiscoveryServiceState::Running;
}

void DiscoveryServer::StartWorkers()
{
    taskProcessor->Start();
    parser->Start();
    receiver->Start();
}

void DiscoveryServer::CreateComponents(const HostRegistrations& registrations)
{
    WarnOfOtherReceiver();
    const SmartPointer<IDiscoverySocket> newSocket = OpenSocket();
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
    newTaskProcessor->Install(carriedOver);
    carriedOver = HostRegistrations();
    isCarryingOver = false;
    socket = newSocket;
    taskProcessor = newTaskProcessor;
    parser = newParser;
    receiver = newReceiver;
}

void DiscoveryServer::WarnOfOtherReceiver() const
{
    const Int32 port = DiscoveryPorts::GetInstance()->ServerPort();
    if (Socket::IsPortUsed(port))
    {
        log.Write("Another socket on this machine is bound to port " + port.ToString() +
                      " : answers of devices go to only one of them.",
                  LogStreamLevel::Critical);
    }
}

void DiscoveryServer::Stop()
{
    const RestartBarrier barrier(*this);
    const Lock lock(lifecycleLock);
    StopLocked();
}

void DiscoveryServer::StopIfRunning(void (*prepare)(DiscoveryServerTaskProcessor&))
{
    const RestartBarrier barrier(*this);
    const Lock lock(lifecycleLock); // when another thread stops the server, this one returns after it, too
    if (state == DiscoveryServiceState::Running)
    {
        prepare(*taskProcessor);
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
    state = DiscoveryServiceState::Stopping;
    receiver->Stop();
    parser->Stop();
    taskProcessor->Stop();
    ReleaseComponents();
    componentsMustBeCreated = true;
    state = DiscoveryServiceState::Stopped;
    log.Write("Discovery Server stopped", LogStreamLevel::Critical);
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
        if (isCarryingOver)
        {
            carriedOver = taskProcessor->Registrations();
        }
        receiver = nullptr;
        parser = nullptr;
        taskProcessor = nullptr;
        socket = nullptr;
    }
    LogDiscarded(formerTaskProcessor->PendingCount(), formerParser->PendingCount());
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
        if (isCarryingOver)
        {
            carriedOver.Provider = provider;
            return;
        }
    }
    log.Write("Broadcast provider not installed : the server has not been started.", LogStreamLevel::Standard);
}

void DiscoveryServer::AsynchronousRestart(Object*, const EventArgs&)
{
    TriggerAsynchronous(BackgroundOperation::Kind::Restart);
}

void DiscoveryServer::AsynchronousStop(Object*, const EventArgs&)
{
    TriggerAsynchronous(BackgroundOperation::Kind::Stop);
}

void DiscoveryServer::TriggerAsynchronous(BackgroundOperation::Kind kind)
{
    if (!BeginAsynchronous(kind))
    {
        return;
    }
    // Nobody else would tell of this loss again. So a thread that cannot be had now is asked for until it is there, or
    // until a stop makes it superfluous.
    for (std::int32_t delay = FirstRetryDelayMilliseconds; !TryPostAsynchronous(kind);
         delay = std::min(2 * delay, RetryDelayMilliseconds))
    {
        if (background.IsCancelledWithin(delay))
        {
            GiveUpAsynchronous();
            return;
        }
    }
}

bool DiscoveryServer::BeginAsynchronous(BackgroundOperation::Kind kind)
{
    if (state != DiscoveryServiceState::Starting && state != DiscoveryServiceState::Running)
    {
        return false; // what a worker notices while it is being stopped is no loss
    }
    {
        const Lock lock(asyncLock);
        if (asyncOperationPending)
        {
            return false;
        }
        asyncOperationPending = true;
    }
    log.Write(kind == BackgroundOperation::Kind::Restart ? "Asynchronous restart triggered"
                                                         : "Asynchronous stop triggered",
              LogStreamLevel::Critical);
    return true;
}

void DiscoveryServer::GiveUpAsynchronous()
{
    const Lock lock(asyncLock);
    asyncOperationPending = false;
}

bool DiscoveryServer::TryPostAsynchronous(BackgroundOperation::Kind kind)
{
    bool isPosted = false;
    log.Guard("Failed to start the background operation", [&] { isPosted = background.Post({kind, run}); });
    return isPosted;
}

void DiscoveryServer::RestartIfLost()
{
    bool isLost = false;
    {
        const Lock lock(componentsLock);
        isLost = !receiver.IsNull() && (receiver->HasLostSocket() || taskProcessor->HasLostSocket());
    }
    constexpr auto restart = BackgroundOperation::Kind::Restart;
    if (isLost && IsRunning() && BeginAsynchronous(restart) && !TryPostAsynchronous(restart))
    {
        GiveUpAsynchronous(); // the host application's thread does not wait; its next start or stop looks again
    }
}

void DiscoveryServer::RunBackground(const BackgroundOperation::Request& request)
{
    log.Guard("Background operation failed", [&] {
        if (request.What == BackgroundOperation::Kind::Restart)
        {
            Restart(request.Run);
            return;
        }
        const Lock lock(lifecycleLock);
        if (run == request.Run)
        {
            StopLocked();
        }
    });
}

void DiscoveryServer::Restart(std::int64_t lostRun)
{
    if (run != lostRun || !WaitForPace() || !StopForRestart(lostRun) || !WaitUntilSocketCanBeBound(lostRun))
    {
        return;
    }
    const Lock lock(lifecycleLock);
    if (run == lostRun && state == DiscoveryServiceState::Stopped)
    {
        StartLocked(HostRegistrations());
    }
}

bool DiscoveryServer::StopForRestart(std::int64_t lostRun)
{
    const Lock lock(lifecycleLock);
    if (run != lostRun || state != DiscoveryServiceState::Running)
    {
        return false;
    }
    {
        const Lock componentsGuard(componentsLock);
        isCarryingOver = true;
    }
    StopLocked();
    return true;
}

bool DiscoveryServer::WaitForPace()
{
    const auto since = std::chrono::steady_clock::now() - lastRestart;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(RestartPace - since);
    const auto milliseconds = std::clamp<std::int64_t>(wait.count(), 0, RestartPace.count());
    if (background.IsCancelledWithin(static_cast<std::int32_t>(milliseconds)))
    {
        return false;
    }
    lastRestart = std::chrono::steady_clock::now();
    return true;
}

bool DiscoveryServer::WaitUntilSocketCanBeBound(std::int64_t lostRun)
{
    constexpr std::int32_t LongestPauses = LongestRetryDelayMilliseconds / RetryDelayMilliseconds;
    for (std::int32_t pauses = 1;; pauses = std::min(2 * pauses, LongestPauses))
    {
        if (IsRestartSuperfluous(lostRun, 0))
        {
            return false;
        }
        if (CanBindSocket(pauses * RetryDelayMilliseconds / 1000))
        {
            return true;
        }
        for (std::int32_t pause = 0; pause < pauses; ++pause)
        {
            if (IsRestartSuperfluous(lostRun, RetryDelayMilliseconds))
            {
                return false;
            }
        }
    }
}

bool DiscoveryServer::IsRestartSuperfluous(std::int64_t lostRun, std::int32_t milliseconds)
{
    return background.IsCancelledWithin(milliseconds) || run != lostRun;
}

bool DiscoveryServer::CanBindSocket(std::int32_t secondsToNextTry) const
{
    bool isBound = false;
    log.Guard("No socket for the restart yet", [&] {
        try
        {
            OpenSocket();
            isBound = true;
        }
        catch (const Exception& exception)
        {
            log.Write("No socket for the restart yet, trying again in " + Int32(secondsToNextTry).ToString() + " s",
                      exception);
        }
    });
    return isBound;
}

void DiscoveryServer::ForgetCarriedOver()
{
    const Lock lock(componentsLock);
    carriedOver = HostRegistrations();
    isCarryingOver = false;
}

DiscoveryServer::RestartBarrier::RestartBarrier(DiscoveryServer& server)
    : server(server)
    , suspension(std::in_place, server.background)
{
    server.ForgetCarriedOver();
    server.GiveUpAsynchronous(); // what was pending is gone
}

DiscoveryServer::RestartBarrier::~RestartBarrier()
{
    suspension.reset();
    // What was refused meanwhile, when the server runs on all the same.
    server.log.Guard("Failed to restart", [this] { server.RestartIfLost(); });
}
} // namespace Zent::Discovery::Server
