#pragma once

#include "system/Delegate.h"
#include "system/SmartPointer.h"
#include "system/Threading/EventWaitHandle.h"
#include "system/Threading/Monitor.h"
#include "system/Threading/Thread.h"

#include <cstdint>

namespace Zent::Discovery::Server
{
/// Runs operations that must not run on the thread that asks for them: one at a time, on a background thread that is
/// there only while there is something to do. Any thread may post; whoever suspends waits for that thread.
class BackgroundOperation final : public Nfx::System::Object
{
public:
    enum class Kind
    {
        Restart,
        Stop
    };

    /// What to do, and the run of the server for which it was asked.
    struct Request
    {
        Kind What;
        std::int64_t Run;
    };

    using Body = Nfx::System::Delegate<const Request&>;

    /// The body runs on the background thread and must let nothing escape.
    explicit BackgroundOperation(const Nfx::System::SmartPointer<Body>& body);

    /// Runs the body with this request soon. False, and nothing happens, while suspended.
    /// @throws OutOfMemoryException when the thread cannot be created.
    bool Post(const Request& request);

    /// For the body: waits, and returns true at once when it is to give up.
    /// Milliseconds; 0 only asks.
    bool IsCancelledWithin(std::int32_t milliseconds);

    /// From construction to the end of the scope nothing is posted and nothing runs: cancels what does and joins its
    /// thread. Not on the background thread, and not while holding a lock that the body takes.
    class Suspension final
    {
    public:
        explicit Suspension(BackgroundOperation& operation);
        ~Suspension();
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;

    private:
        BackgroundOperation& operation;
    };

private:
    void Run();
    bool TakeRequest(Request& taken);
    void Suspend();
    void Resume() noexcept;

    const Nfx::System::SmartPointer<Body> body;
    Nfx::System::Threading::EventWaitHandle cancelled; // set while anybody suspends
    mutable Nfx::System::Threading::Monitor lock;
    Nfx::System::SmartPointer<Nfx::System::Threading::Thread> thread NFX_GUARDED_BY(lock);
    Request request NFX_GUARDED_BY(lock){};
    bool hasRequest NFX_GUARDED_BY(lock) = false;
    bool isActive NFX_GUARDED_BY(lock) = false; // the thread will look for a request once more
    std::int32_t suspensions NFX_GUARDED_BY(lock) = 0;
};
} // namespace Zent::Discovery::Server
