#pragma once

#include "Discovery/ComponentLog.h"
#include "Server/HostEvents.h"
#include "system/Threading/EventWaitHandle.h"
#include "system/Threading/Monitor.h"
#include "system/Threading/Thread.h"

#include <chrono>
#include <cstdint>

namespace Zent::Discovery::Server
{
/// Answers what the server's components report: stops the server and tries to start it again until that succeeds, on a
/// thread that is there only for that. Its state says where the server stands with it:
///
///     Idle      the server has not been started, or somebody stops it: what components notice then is no loss
///     Watching  the server runs, or its threads are being started
///     Called    something was reported, and the thread is going to stop the server
///     Waiting   the thread stops the server and starts it again as soon as it can, with what is carried over
///
/// The server calls Watch, Settle, WaitAgain and Cancel, and makes the tries of a recovery, under its lifecycle lock: a
/// start or stop of the host application comes before a try or after it, and makes the next one superfluous.
///
/// Any thread; no operation but Cancellation's destructor waits.
class AutomaticRestart final
{
public:
    enum class Kind
    {
        Restart,
        Stop // and no start
    };

    class Recovery;
    class IServer;

    AutomaticRestart(IServer& server, const ComponentLog& log);
    AutomaticRestart(const AutomaticRestart&) = delete;
    AutomaticRestart& operator=(const AutomaticRestart&) = delete;

    /// The server has its components and starts their threads: their reports count from now on. Empties what was
    /// carried over, which the components have got.
    void Watch();

    /// The threads run: the restart that they were started for, or in place of, is over. One that a component has
    /// called for meanwhile is not.
    void Settle();

    /// The threads could not be started: the restart that they were to be started for, or in place of, goes on waiting,
    /// or one that a component has called for meanwhile waits instead.
    void WaitAgain();

    /// A component's report. Does nothing unless Watching.
    /// @throws OutOfMemoryException when there is no thread to answer it; logged. It has to be reported again.
    void Report(Kind kind);

    /// Ends a recovery for good when the server is stopped, and forgets what was to be carried over.
    class Cancellation final
    {
    public:
        explicit Cancellation(AutomaticRestart& restart) noexcept;

        /// Joins the thread of what was cancelled. Not within the lifecycle lock, which that thread may want.
        ~Cancellation();
        Cancellation(const Cancellation&) = delete;
        Cancellation& operator=(const Cancellation&) = delete;

        /// Within the lifecycle lock.
        void Cancel();

    private:
        AutomaticRestart& restart;
        Nfx::System::SmartPointer<Recovery> cancelled;
    };

    /// Before each try; the first makes Waiting of Called when the server runs. False when there is nothing to restart
    /// any more.
    bool BeginTry(const Recovery& recovery, bool isServerRunning);

    bool IsWaiting() const;

    // What is carried over from the stop of a restart to its start.

    /// What the components that are being released had installed. While Waiting, and within the components' lock: so
    /// that a provider is set either before this or by TryCarryOver.
    void CarryOver(const HostRegistrations& registrations);

    /// While Waiting the provider takes the place of the one that is carried over; else false.
    bool TryCarryOver(const Nfx::System::SmartPointer<IBroadcastProvider>& provider);

    HostRegistrations CarriedOver() const;

    /// Null when there is none. Within the components' lock, when the new ones take the place of the former.
    Nfx::System::SmartPointer<IBroadcastProvider> CarriedOverProvider() const;

private:
    enum class State
    {
        Idle,
        Watching,
        Called,
        Waiting
    };

    // None of these holds the lock on entry.

    void Begin(Kind kind);

    /// On the recovery's thread.
    void Recover(Recovery& recovery);
    bool WaitForPace(Recovery& recovery);

    IServer& server;
    const ComponentLog& log;

    mutable Nfx::System::Threading::Monitor lock; // taken after every lock of the server
    State state NFX_GUARDED_BY(lock) = State::Idle;
    Nfx::System::SmartPointer<Recovery> recovery NFX_GUARDED_BY(lock); // the latest, also when it is through
    HostRegistrations carriedOver NFX_GUARDED_BY(lock);
    std::chrono::steady_clock::time_point lastRestart NFX_GUARDED_BY(lock);
};

/// One report and its answer, on a thread of its own.
class AutomaticRestart::Recovery final : public Nfx::System::Object
{
public:
    /// The former one, if any, is ended and joined before this one begins.
    Recovery(AutomaticRestart& restart, Kind kind, const Nfx::System::SmartPointer<Recovery>& former);

    /// Once.
    /// @throws OutOfMemoryException when the thread cannot be created.
    void Start();

    /// Waits without limit for the thread to end. Any thread but that one, and without any lock of the server.
    void Join();

    /// It is not wanted any more.
    void End();

    /// Waits, and returns true at once when it is not wanted any more. Milliseconds; 0 only asks.
    bool IsOverWithin(std::int32_t milliseconds) const;

    const Kind What;

private:
    void Run();

    AutomaticRestart& restart;
    Nfx::System::SmartPointer<Recovery> former; // used by the thread alone
    mutable Nfx::System::Threading::EventWaitHandle over;
    const Nfx::System::SmartPointer<Nfx::System::Threading::Thread> thread;
};

/// What a recovery does, on its thread. Nothing when it is not wanted any more, or not due.
class AutomaticRestart::IServer
{
public:
    virtual void StopFor(const Recovery& recovery) = 0;

    /// Stops the server, when it is not stopped yet, and starts it again. False when that has failed, which is logged:
    /// to be called again after so many seconds.
    virtual bool RestartFor(const Recovery& recovery, std::int32_t secondsToNextTry) = 0;

protected:
    ~IServer() = default;
};
} // namespace Zent::Discovery::Server
