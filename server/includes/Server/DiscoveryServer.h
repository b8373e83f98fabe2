#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/DiscoveryReceiver.h"
#include "Discovery/IDiscoverySocket.h"
#include "Server/AutomaticRestart.h"
#include "Server/DiscoveryServerMessageParser.h"
#include "Server/DiscoveryServerTaskProcessor.h"
#include "Server/DiscoveryServiceState.h"
#include "Server/HostEvents.h"
#include "Server/ServerActions.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace Zent::Discovery::Server
{
/// The server: owns the discovery socket and the three workers, and turns requests into actions for the task processor.
///
/// Any thread may call any operation, except that the service's own threads (those that run the host application's
/// callbacks) must not call Start and Stop, which wait for them. lifecycleLock is taken before componentsLock, and both
/// before any lock of a component.
///
/// A socket that is lost while nobody asked to stop, and a thread that somebody else has ended, are answered by an
/// automatic restart, at most one a second. It keeps what the host application has installed: the broadcast provider
/// and the event handlers. While there is no socket, memory or thread for it, it tries again after 1, 2, 4, 8 and then
/// every 10 seconds. A stop cancels it; a start while it waits takes its place.
class DiscoveryServer final : public Nfx::System::Object, private AutomaticRestart::IServer
{
public:
    DiscoveryServer();

    /// Stops what still runs, also what a failed start has left behind.
    ~DiscoveryServer() override;

    /// Start without handlers of events.
    void Start();

    /// Creates the components, installs the registrations and starts the threads. Refused with a log line when the
    /// server is starting or running; the registrations are added all the same. When it fails the state stays Starting
    /// and only the destructor cleans up; but an automatic restart that waits goes on waiting, with the registrations
    /// of this start when only a thread was missing.
    /// @throws SocketException when the socket cannot be opened; OutOfMemoryException when a thread cannot be created.
    void Start(const HostRegistrations& registrations);

    /// Cancels an automatic restart, ends the threads and releases the components; refused with a log line when the
    /// server is not running. Waits for a callback that is running.
    void Stop();

    /// Stop without a word when the server is not running. Removes the handlers of events before it waits for anything
    /// but another start or stop.
    void StopIfRunning();

    /// True when a start or stop has failed, so that neither can succeed any more; not while a restart waits, which
    /// repairs it. Waits while one is under way.
    bool HasFailed() const;

    /// True exactly in the state Running, so not while it starts, stops or waits for a restart.
    bool IsRunning() const noexcept;

    // Requests: each is queued with the task processor and leaves later; the result says nothing about delivery.
    // All of them throw NullPointerException while the server has no task processor: before Start and after Stop.

    void Discover();
    void ChangeIPConfigurations(
        const Nfx::System::SmartPointer<SendChangeYourIPConfigAction::NICConfigList>& nicConfigs);
    void ChangeHostName(const Nfx::System::String& newHostName, const MACAddress& macAddress);
    void ChangeHostName(const Nfx::System::String& newHostName, const Nfx::System::Net::IPAddress& ipAddress);
    void RefreshClient(const MACAddress& macAddress);
    void ReachClient(const Nfx::System::Net::IPAddress& ipAddress);

    /// Replaces the broadcast provider of the task processor. Without one nothing is installed and a log line says so;
    /// during an automatic restart the provider goes to the next one.
    void SetBroadcastProvider(const Nfx::System::SmartPointer<IBroadcastProvider>& provider);

    /// Null before Start and after Stop.
    Nfx::System::SmartPointer<DiscoveryServerTaskProcessor> TaskProcessor() const;

    /// Handlers for the workers' events: restart or stop the server on the background thread. They do nothing while one
    /// is already pending, or while the server is being stopped.
    /// @throws OutOfMemoryException when there is no thread for it; logged.
    void AsynchronousRestart(Nfx::System::Object* sender, const Nfx::System::EventArgs& args);
    void AsynchronousStop(Nfx::System::Object* sender, const Nfx::System::EventArgs& args);

private:
    struct Leftovers;

    // On the thread of a recovery, without any lock.

    void StopFor(const AutomaticRestart::Recovery& recovery) override;
    bool RestartFor(const AutomaticRestart::Recovery& recovery, std::int32_t secondsToNextTry) override;

    /// False when there is no socket for it, which becomes a line; throws when anything else is missing.
    bool TryToRestart(const AutomaticRestart::Recovery& recovery, const Nfx::System::String& noSocket);

    bool IsStartingOrRunning() const noexcept;
    void LogStart() const;

    // Within lifecycleLock and without componentsLock. The socket may be null, then one is opened.

    void StartLocked(const Nfx::System::SmartPointer<IDiscoverySocket>& openSocket,
                     const HostRegistrations& registrations) NFX_REQUIRES(lifecycleLock);

    /// StartLocked while a restart waits; when it fails, that goes on waiting.
    void StartOrWaitAgain(const Nfx::System::SmartPointer<IDiscoverySocket>& openSocket,
                          const HostRegistrations& registrations) NFX_REQUIRES(lifecycleLock);
    void StartWorkers() NFX_REQUIRES(lifecycleLock);
    void CreateComponents(const Nfx::System::SmartPointer<IDiscoverySocket>& openSocket,
                          const HostRegistrations& registrations) NFX_REQUIRES(lifecycleLock);
    Nfx::System::SmartPointer<IDiscoverySocket> OpenSocket() const;
    void StopLocked() NFX_REQUIRES(lifecycleLock);

    /// Ends a restart for good, and what it could not stop.
    void CancelRestart(AutomaticRestart::Cancellation& cancellation) NFX_REQUIRES(lifecycleLock);

    /// Ends what there is. When it fails it may be called again.
    void StopComponents() NFX_REQUIRES(lifecycleLock);
    void LogDiscarded(std::int32_t tasks, std::int32_t datagrams) const;

    /// While there are components and nobody starts or stops them: within lifecycleLock, or in the destructor.
    void DisconnectComponents();

    /// When the components' threads have ended.
    void ReleaseComponents() NFX_REQUIRES(lifecycleLock);

    /// Null is allowed. False when it could not be stopped; logged.
    template <class TWorker>
    bool StopLeftover(const Nfx::System::SmartPointer<TWorker>& worker);

    void Queue(const Nfx::System::SmartPointer<ServerAction>& action);

    const ComponentLog log;
    std::unique_ptr<Leftovers> leftovers; // reserved: when they are needed there may be no memory

    // Written within both lifecycleLock and componentsLock, read within either.
    Nfx::System::SmartPointer<IDiscoverySocket> socket;
    Nfx::System::SmartPointer<DiscoveryServerMessageParser> parser;
    Nfx::System::SmartPointer<DiscoveryReceiver> receiver;
    Nfx::System::SmartPointer<DiscoveryServerTaskProcessor> taskProcessor;

    mutable Nfx::System::Threading::Monitor componentsLock;

    mutable Nfx::System::Threading::Monitor lifecycleLock;
    bool componentsMustBeCreated NFX_GUARDED_BY(lifecycleLock) = true;

    std::atomic<std::int32_t> state{DiscoveryServiceState::Unstarted}; // written under lifecycleLock

    AutomaticRestart restart; // last: its thread uses all of the above
};
} // namespace Zent::Discovery::Server
