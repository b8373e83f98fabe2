#pragma once

#include "Discovery/DiscoveryWorker.h"
#include "Discovery/HandOver.h"
#include "Discovery/IBroadcastProvider.h"
#include "Discovery/Message/DiscoveryMessage.h"
#include "Server/MemoryReturn.h"
#include "Server/ServerAction.h"
#include "system/Net/Sockets/SocketException.h"

#include <atomic>

namespace Zent::Discovery::Server
{
/// Takes tasks from any thread and processes them one at a time, in order, on a thread of its own.
/// To shut down: call Stop, which joins the thread; then release the processor. What is still queued goes with it.
class DiscoveryTaskProcessor : public DiscoveryWorker
{
public:
    /// So many tasks may wait; one more is refused.
    static constexpr std::int32_t MaximumPending = 512;

    /// Queues a task, or drops it with a log line when MaximumPending already wait. Never waits for the processor. When
    /// that cannot be woken a line says so, and it does the task with the next one. Any thread.
    void Enqueue(Nfx::System::Object* sender, const ServerActionArgs& task);

    /// How many tasks wait at this moment.
    std::int32_t PendingCount() const;

    /// Ends the thread after the task that it is working on; what waits is not processed any more. Waits without limit.
    void Stop() override;

    /// Null when broadcasts leave through the socket. Any thread.
    Nfx::System::SmartPointer<IBroadcastProvider> BroadcastProvider() const;
    void SetBroadcastProvider(const Nfx::System::SmartPointer<IBroadcastProvider>& provider);

protected:
    DiscoveryTaskProcessor(const Nfx::System::SmartPointer<IDiscoverySocket>& socket, const Nfx::System::String& name);

    /// Processes one task, on the processor's thread. What it throws is logged and costs this task alone.
    virtual void ProcessTask(const ServerActionArgs& task) = 0;

    /// Sends a message: through the broadcast provider when there is one and the destination is the broadcast address,
    /// else through the socket. A failing send is logged and costs this message; a lost socket raises SocketClosed.
    void Send(const DiscoveryMessage& message, const Nfx::System::Net::IPAddress& destination);

private:
    // On the processor's thread and without any lock, but TryQueue: any thread.

    void Run();
    bool TryQueue(const Nfx::System::SmartPointer<ServerActionArgs>& task);
    void ProcessNext();
    void Transmit(const Nfx::System::String& text, const Nfx::System::Net::IPAddress& destination);
    void HandleSendError(const Nfx::System::Net::Sockets::SocketException& exception);
    void CheckSocket();

    HandOver<Nfx::System::SmartPointer<ServerActionArgs>> tasks{MaximumPending};
    std::atomic<std::int64_t> waitingBytes{0}; // of the datagrams of all tasks; those being queued may be missing
    MemoryReturn memoryReturn;                 // used by the processor's thread only
    mutable Nfx::System::Threading::Monitor providerLock;
    Nfx::System::SmartPointer<IBroadcastProvider> provider NFX_GUARDED_BY(providerLock);
};
} // namespace Zent::Discovery::Server
