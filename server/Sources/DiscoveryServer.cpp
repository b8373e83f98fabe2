#include "Server/DiscoveryServer.h"

#include "Discovery/DiscoveryLogger.h"
#include "Discovery/DiscoveryPorts.h"
#include "Discovery/DiscoverySocketUdpClient.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Server/SendAllSendYourSignatureAction.h"
#include "Server/SendChangeYourHostNameAction.h"
#include "Server/SendSendYourSignatureAction.h"
#include "system/Threading/Lock.h"

#include <algorithm>
#include <exception>

namespace Zent::Discovery::Server
{
using Nfx::System::EventArgs;
using Nfx::System::Exception;
using Nfx::System::Int32;
using Nfx::System::MakeDelegate;
using Nfx::System::Object;
using Nfx::System::OutOfMemoryException;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Net::IPAddress;
using Nfx::System::Threading::Lock;

namespace
{
const char SourceName[] = "Sources/DiscoveryServer";

constexpr std::chrono::milliseconds RestartPace{1000};
constexpr std::int32_t LongestRetryDelayMilliseconds = 10000;

SmartPointer<IDiscoverySocket> OpenSocket()
{
    const SmartPointer<DiscoveryPorts>& ports = DiscoveryPorts::GetInstance();
    return SmartPointer<IDiscoverySocket>(new DiscoverySocketUdpClient(ports->ServerPort(), ports->ClientPort()));
}
} // namespace

DiscoveryServer::DiscoveryServer()
    : channel("Discovery Server")
    , background(MakeDelegate(*this, &DiscoveryServer::RunBackground))
{
}

DiscoveryServer::~DiscoveryServer()
{
    const RestartBarrier barrier(*this);
    StopLeftovers();
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
    Log(String("Starting Discovery Server service (") + DiscoveryMessage::ProtocolVersionText + ")",
        LogStreamLevel::Critical);
    if (state == DiscoveryServiceState::Starting || state == DiscoveryServiceState::Running)
    {
        Log("Server's current state : " + DiscoveryServiceState(state).ToString() + " ! -> Starting aborted.",
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
    StartWorkers();
    {
        const Lock lock(asyncLock);
        asyncOperationPending = false;
    }
    state = DiscoveryServiceState::Running;
    // A loss during the lines above was ignored, because an operation was still pending.
    if (receiver->HasLostSocket() || taskProcessor->HasLostSocket())
    {
        TriggerAsynchronous(BackgroundOperation::Kind::Restart);
    }
}

void DiscoveryServer::StartWorkers()
{
    taskProcessor->Start();
    parser->Start();
    receiver->Start();
}

void DiscoveryServer::CreateComponents(const HostRegistrations& registrations)
{
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

void DiscoveryServer::Stop()
{
    const RestartBarrier barrier(*this);
    const Lock lock(lifecycleLock);
    StopLocked();
}

void DiscoveryServer::StopLocked()
{
    Log("Stopping Discovery Server service", LogStreamLevel::Critical);
    if (state != DiscoveryServiceState::Running)
    {
        Log("Client's current state : " + DiscoveryServiceState(state).ToString() + " ! -> Stopping aborted.",
            LogStreamLevel::Critical);
        return;
    }
    state = DiscoveryServiceState::Stopping;
    receiver->Stop();
    parser->Stop();
    taskProcessor->Stop();
    LogDiscarded();
    ReleaseComponents();
    componentsMustBeCreated = true;
    state = DiscoveryServiceState::Stopped;
    Log("Discovery Server stopped", LogStreamLevel::Critical);
}

void DiscoveryServer::LogDiscarded()
{
    const std::int32_t tasks = taskProcessor->PendingCount();
    const std::int32_t datagrams = parser->PendingCount();
    if (tasks > 0 || datagrams > 0)
    {
        Log("Discarded what was still queued : " + Int32(tasks).ToString() + " tasks, " + Int32(datagrams).ToString() +
                " datagrams.",
            LogStreamLevel::Critical);
    }
}

void DiscoveryServer::ReleaseComponents()
{
    parser->ActionReady().Clear();
    receiver->SocketClosed().Clear();
    receiver->StopAsked().Clear();
    taskProcessor->SocketClosed().Clear();
    taskProcessor->StopAsked().Clear();

    const Lock lock(componentsLock);
    receiver = nullptr;
    parser = nullptr;
    taskProcessor = nullptr;
    socket = nullptr;
}

void DiscoveryServer::StopLeftovers() noexcept
{
    try
    {
        const Lock lock(lifecycleLock);
        if (!receiver.IsNull())
        {
            receiver->Stop();
            parser->Stop();
            taskProcessor->Stop();
        }
    }
    catch (const Exception& exception)
    {
        LogLastResort("Failed to stop what was still running", exception);
    }
}

bool DiscoveryServer::IsRunning() const noexcept
{
    return state == DiscoveryServiceState::Running;
}

void DiscoveryServer::Discover()
{
    Log("Discover", LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendAllSendYourSignatureAction()));
}

void DiscoveryServer::ChangeIPConfigurations(
    const SmartPointer<SendChangeYourIPConfigAction::NICConfigList>& nicConfigs)
{
    Log("Change IP configs", LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendChangeYourIPConfigAction(nicConfigs)));
}

void DiscoveryServer::ChangeHostName(const String& newHostName, const MACAddress& macAddress)
{
    Log("Change HostName to " + newHostName + " (" + macAddress.ToString() + ")", LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendChangeYourHostNameAction(newHostName, macAddress)));
}

void DiscoveryServer::ChangeHostName(const String& newHostName, const IPAddress& ipAddress)
{
    Log("Change HostName to " + newHostName + " (" + ipAddress.ToString() + ")", LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendChangeYourHostNameAction(newHostName, ipAddress)));
}

void DiscoveryServer::RefreshClient(const MACAddress& macAddress)
{
    Log("Refresh Client owning " + macAddress.ToString(), LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendSendYourSignatureAction(macAddress)));
}

void DiscoveryServer::ReachClient(const IPAddress& ipAddress)
{
    Log("Reach Client " + ipAddress.ToString(), LogStreamLevel::Standard);
    Queue(SmartPointer<ServerAction>(new SendSendYourSignatureAction(ipAddress)));
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
    Log("Broadcast provider not installed : the server has not been started.", LogStreamLevel::Standard);
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
    if (state != DiscoveryServiceState::Starting && state != DiscoveryServiceState::Running)
    {
        return; // what a worker notices while it is being stopped is no loss
    }
    {
        const Lock lock(asyncLock);
        if (asyncOperationPending)
        {
            return;
        }
        asyncOperationPending = true;
    }
    Log(kind == BackgroundOperation::Kind::Restart ? "Asynchronous restart triggered" : "Asynchronous stop triggered",
        LogStreamLevel::Critical);
    PostAsynchronous(kind);
}

void DiscoveryServer::PostAsynchronous(BackgroundOperation::Kind kind)
{
    try
    {
        background.Post({kind, run});
    }
    catch (const Exception& exception)
    {
        Log("Failed to start the background operation", exception);
        const Lock lock(asyncLock);
        asyncOperationPending = false; // the next loss tries again
    }
}

void DiscoveryServer::RunBackground(const BackgroundOperation::Request& request)
{
    try
    {
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
    }
    catch (const Exception& exception)
    {
        LogLastResort("Background operation failed", exception);
    }
    catch (const std::exception&) // memory is the only thing that can run out here
    {
        LogLastResort("Background operation failed", OutOfMemoryException(SourceName, __LINE__));
    }
}

void DiscoveryServer::Restart(std::int64_t lostRun)
{
    if (!WaitForPace() || !StopForRestart(lostRun) || !WaitUntilSocketCanBeBound())
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
    HostRegistrations registrations = taskProcessor->Registrations();
    StopLocked();
    const Lock componentsGuard(componentsLock);
    carriedOver = registrations;
    isCarryingOver = true;
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

bool DiscoveryServer::WaitUntilSocketCanBeBound()
{
    for (std::int32_t delay = 1000;; delay = std::min(2 * delay, LongestRetryDelayMilliseconds))
    {
        if (background.IsCancelledWithin(0))
        {
            return false;
        }
        try
        {
            OpenSocket();
            return true;
        }
        catch (const Exception& exception)
        {
            Log("No socket for the restart yet, trying again in " + Int32(delay / 1000).ToString() + " s", exception);
        }
        if (background.IsCancelledWithin(delay))
        {
            return false;
        }
    }
}

void DiscoveryServer::ForgetCarriedOver()
{
    const Lock lock(componentsLock);
    carriedOver = HostRegistrations();
    isCarryingOver = false;
}

void DiscoveryServer::Log(const String& message, const LogStreamLevel& level) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, level);
}

void DiscoveryServer::Log(const String& message, const Exception& exception) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, exception);
}

void DiscoveryServer::LogLastResort(const char* message, const Exception& exception) const noexcept
{
    DiscoveryLogger::GetInstance().LogLastResort(channel, message, exception);
}

DiscoveryServer::RestartBarrier::RestartBarrier(DiscoveryServer& server)
    : suspension(server.background)
{
    server.ForgetCarriedOver();
}
} // namespace Zent::Discovery::Server
