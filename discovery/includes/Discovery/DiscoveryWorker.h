#pragma once

#include "Discovery/ComponentLog.h"
#include "Discovery/IDiscoverySocket.h"
#include "system/Event.h"
#include "system/Threading/Thread.h"
#include "system/Threading/ThreadPriority.h"

#include <atomic>

namespace Zent::Discovery
{
/// A named background thread that works on one discovery socket. Its owner starts it once, and calls Stop before it
/// lets go of it.
class DiscoveryWorker : public Nfx::System::Object
{
public:
    /// Starts the thread; its priority is best effort.
    /// @throws OutOfMemoryException when the thread cannot be created.
    void Start();

    /// Shuts the socket down, closes it and waits without limit for the thread to end, whatever becomes of the socket.
    /// May be called twice, and before Start. Any thread but the worker's own.
    /// @throws SocketException when the socket could not be shut down; the thread has ended all the same.
    virtual void Stop();

    /// Raised when the socket is lost while nobody asked to stop, on the worker's thread, or when that thread is gone,
    /// on the thread that finds out. A handler that throws has not dealt with it.
    Nfx::System::Event<Nfx::System::EventArgs>& SocketClosed();

    /// Raised by a worker that wants the whole service stopped.
    Nfx::System::Event<Nfx::System::EventArgs>& StopAsked();

protected:
    /// @throws ArgumentNullException when the socket is null.
    DiscoveryWorker(const Nfx::System::SmartPointer<IDiscoverySocket>& socket,
                    const Nfx::System::String& name,
                    const Nfx::System::SmartPointer<Nfx::System::Delegate<>>& work,
                    const Nfx::System::Threading::ThreadPriority& priority);

    IDiscoverySocket& Socket() const;

    const ComponentLog& Log() const noexcept { return log; }

    /// Says that the socket is lost, whoever took it away, unless it is the owner who stops this worker.
    void RaiseSocketClosed();

    /// Says so as well when the thread has been ended while nobody asked to stop: nothing runs in a thread that code of
    /// the host application ends, so others look. Any thread.
    void CheckThread();

    bool IsStopRequested() const noexcept;
    void RequestStop() noexcept;

private:
    void EndSocket();
    void Join();

    const Nfx::System::SmartPointer<IDiscoverySocket> socket;
    const Nfx::System::String name;
    const ComponentLog log;
    const Nfx::System::SmartPointer<Nfx::System::Threading::Thread> thread;
    const Nfx::System::Threading::ThreadPriority priority;
    Nfx::System::Event<Nfx::System::EventArgs> socketClosed;
    Nfx::System::Event<Nfx::System::EventArgs> stopAsked;
    std::atomic<bool> stopRequested{false}; // set by Stop, read by the worker
    std::atomic<bool> isThreadGone{false};  // set once, by whoever finds out
};
} // namespace Zent::Discovery
