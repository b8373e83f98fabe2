#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/Datagram.h"
#include "Discovery/HandOver.h"
#include "system/Threading/Thread.h"

#include <atomic>
#include <cstdint>

namespace Zent::Discovery
{
/// Takes received datagrams off the receiver's hands: queues them and processes them one at a time, in order of
/// arrival, on a thread of its own. A derived class says what processing is.
/// To shut down: call Stop, which joins the thread; then release the parser. What is still queued goes with it.
class DiscoveryMessageParser : public Nfx::System::Object
{
public:
    /// So many datagrams may wait; one more is refused.
    static constexpr std::int32_t MaximumPending = 511;

    /// Starts the thread, above normal priority where the system allows it.
    /// @throws OutOfMemoryException when the thread cannot be created.
    void Start();

    /// Ends the thread after the datagram that it is working on; waits without limit. May be called twice, and before
    /// Start. Any thread but the parser's own.
    virtual void Stop();

    /// Queues a datagram, or drops it with a log line when MaximumPending already wait. Never blocks on the parser
    /// thread. Any thread.
    void Enqueue(const Nfx::System::SmartPointer<Datagram>& datagram);

    /// How many datagrams wait at this moment.
    std::int32_t PendingCount() const;

protected:
    /// Handles one datagram, on the parser thread. What it throws is logged and costs this datagram alone.
    virtual void ProcessDatagram(const Nfx::System::SmartPointer<Datagram>& datagram) = 0;

    /// The name goes to the thread and to the log channel.
    explicit DiscoveryMessageParser(const Nfx::System::String& name);

    const ComponentLog& Log() const noexcept { return log; }

private:
    void Run();
    void ProcessNext();
    void Process(const Nfx::System::SmartPointer<Datagram>& datagram);

    const Nfx::System::String name;
    const ComponentLog log;
    HandOver<Nfx::System::SmartPointer<Datagram>> pending{MaximumPending};
    std::atomic<bool> stopRequested{false}; // set by Stop, read by the parser thread
    const Nfx::System::SmartPointer<Nfx::System::Threading::Thread> thread;
};
} // namespace Zent::Discovery
