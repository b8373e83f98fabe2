#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/DiscoveryReceiver.h"
#include "Discovery/IDiscoverySocket.h"
#include "Server/BackgroundOperation.h"
#include "Server/DiscoveryServerMessageParser.h"
#include "Server/DiscoveryServerTaskProcessor.h"
#include "Server/DiscoveryServiceState.h"
#include "Server/HostRegistrations.h"
#include "Server/SendChangeYourIPConfigAction.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace Zent::Discovery::Server
{
/// The server: owns the discovery socket and the three workers, and turns requests into actions for the task processor.
///
/// Any thread may call any operation, except that the service's own threads (those that run the host application's
/// callbacks) must not call Start and Stop, which wait for them. Locks, in the order in which they are taken:
/// lifecycleLock; then asyncLock or componentsLock, never both; then those within the components.
///
/// A socket that is lost while nobody asked to stop is answered by an automatic restart on a background thread, at most
/// one a second. It keeps what the host application has installed: the broadcast provider and the event handlers.
/// Before it starts again it waits until a socket can be bound, trying after 1, 2, 4, 8 and then every 10 seconds. A
/// stop cancels it.
class DiscoveryServer final : public Nfx::System::Object
{
public:
    DiscoveryServer();

    /// Stops what still runs, also what a failed start has left behind.
    ~DiscoveryServer() override;

    /// Creates the components, installs the registrations and starts the threads. Refused with a log line when the
    /// server is starting or running; the registrations are added all the same. When it fails the state stays Starting
    /// and only the destructor cleans up.
    /// @throws SocketException when the socket cannot be opened; OutOfMemoryException when a thread cannot be created.
    void Start(const HostRegistrations& registrations);

    /// Cancels an automatic restart, ends the threads and releases the components; refused with a log line when the
    /// server is not running. Waits for a callback that is running.
    void Stop();

    /// Stop without a word when the server is not running. Calls prepare before; a failure of prepare stops nothing.
    void StopIfRunning(void (*prepare)(DiscoveryServerTaskProcessor&));

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
    void AsynchronousRestart(Nfx::System::Object* sender, const Nfx::System::EventArgs& args);
    void AsynchronousStop(Nfx::System::Object* sender, const Nfx::System::EventArgs& args);

    /// Keeps automatic restarts away: cancels one that is pending or under way, with what it was to carry over, and
    /// admits none until the result goes out of scope.
    class RestartBarrier final
    {
    public:
        explicit RestartBarrier(DiscoveryServer& server);
        ~RestartBarrier();
        RestartBarrier(const RestartBarrier&) = delete;
        RestartBarrier& operator=(const RestartBarrier&) = delete;

    private:
        DiscoveryServer& server;
        std::optional<BackgroundOperation::Suspension> suspension;
    };

private:
    struct Leftovers;

    void StartLocked(const HostRegistrations& registrations) NFX_REQUIRES(lifecycleLock);
    void StartWorkers() NFX_REQUIRES(lifecycleLock);
    void CreateComponents(const HostRegistrations& registrations) NFX_REQUIRES(lifecycleLock);
    void WarnOfOtherReceiver() const;
    void StopLocked() NFX_REQUIRES(lifecycleLock);
    void DisconnectComponents();
    void ReleaseComponents() NFX_REQUIRES(lifecycleLock);
    void LogDiscarded(std::int32_t tasks, std::int32_t datagrams) const;

    template <class TWorker>
    bool StopLeftover(const Nfx::System::SmartPointer<TWorker>& worker);

    void TriggerAsynchronous(BackgroundOperation::Kind kind);
    bool BeginAsynchronous(BackgroundOperation::Kind kind);
    void GiveUpAsynchronous();
    bool TryPostAsynchronous(BackgroundOperation::Kind kind);
    void RestartIfLost();
    void RunBackground(const BackgroundOperation::Request& request);
    void Restart(std::int64_t lostRun);
    bool StopForRestart(std::int64_t lostRun);
    bool WaitForPace();
    bool WaitUntilSocketCanBeBound(std::int64_t lostRun);
    bool IsRestartSuperfluous(std::int64_t lostRun, std::int32_t milliseconds);
    bool CanBindSocket(std::int32_t secondsToNextTry) const;
    void ForgetCarriedOver();

    void Queue(const Nfx::System::SmartPointer<ServerAction>& action);

    const ComponentLog log;
    std::unique_ptr<Leftovers> leftovers; // reserved: when they are needed there may be no memory

    // Written under both lifecycleLock and componentsLock, read under either.
    Nfx::System::SmartPointer<IDiscoverySocket> socket;
    Nfx::System::SmartPointer<DiscoveryServerMessageParser> parser;
    Nfx::System::SmartPointer<DiscoveryReceiver> receiver;
    Nfx::System::SmartPointer<DiscoveryServerTaskProcessor> taskProcessor;

    mutable Nfx::System::Threading::Monitor componentsLock;
    bool isCarryingOver NFX_GUARDED_BY(componentsLock) = false; // between the stop and the start of a restart
    HostRegistrations carriedOver NFX_GUARDED_BY(componentsLock);

    mutable Nfx::System::Threading::Monitor lifecycleLock;
    bool componentsMustBeCreated NFX_GUARDED_BY(lifecycleLock) = true;

    mutable Nfx::System::Threading::Monitor asyncLock;
    bool asyncOperationPending NFX_GUARDED_BY(asyncLock) = false;

    std::atomic<std::int32_t> state{DiscoveryServiceState::Unstarted}; // written under lifecycleLock
    std::atomic<std::int64_t> run{0};                                  // counts the starts; written under lifecycleLock
    std::chrono::steady_clock::time_point lastRestart;                 // background thread only

    BackgroundOperation background; // last: its thread uses all of the above
};
} // namespace Zent::Discovery::Server
