#include "Server/AutomaticRestart.h"

#include "system/DelegateImpl.h"
#include "system/Threading/Lock.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Server
{
using Nfx::System::MakeDelegate;
using Nfx::System::OutOfMemoryException;
using Nfx::System::SmartPointer;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::EventResetMode;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Thread;

namespace
{
const char SourceName[] = "server/Sources/AutomaticRestart";

constexpr std::chrono::milliseconds RestartPace{1000};
constexpr std::int32_t LongestRetryDelaySeconds = 10;
} // namespace

AutomaticRestart::AutomaticRestart(IServer& server, const ComponentLog& log)
    : server(server)
    , log(log)
{
}

void AutomaticRestart::Watch()
{
    const Lock guard(lock);
    state = State::Watching;
    carriedOver = HostRegistrations();
}

void AutomaticRestart::Settle()
{
    const Lock guard(lock);
    if (state == State::Watching && !recovery.IsNull())
    {
        recovery->End();
    }
}

void AutomaticRestart::Report(Kind kind)
{
    if (!log.Guard("Failed to start the background operation", [&] { Begin(kind); }))
    {
        throw OutOfMemoryException(SourceName, __LINE__);
    }
}

void AutomaticRestart::Begin(Kind kind)
{
    const Lock guard(lock);
    if (state == State::Watching)
    {
        const SmartPointer<Recovery> next(new Recovery(*this, kind, recovery));
        next->Start();
        recovery = next;
        state = State::Called;
    }
}

bool AutomaticRestart::BeginTry(const Recovery& current, bool isServerRunning)
{
    const Lock guard(lock);
    if (current.IsOverWithin(0))
    {
        return false;
    }
    if (state == State::Called && isServerRunning)
    {
        state = State::Waiting;
    }
    return state == State::Waiting;
}

void AutomaticRestart::WaitAgain()
{
    const Lock guard(lock);
    state = State::Waiting;
}

bool AutomaticRestart::IsWaiting() const
{
    const Lock guard(lock);
    return state == State::Waiting;
}

void AutomaticRestart::CarryOver(const HostRegistrations& registrations)
{
    const Lock guard(lock);
    carriedOver = registrations;
}

bool AutomaticRestart::TryCarryOver(const SmartPointer<IBroadcastProvider>& provider)
{
    const Lock guard(lock);
    if (state != State::Waiting)
    {
        return false;
    }
    carriedOver.Provider = provider;
    return true;
}

HostRegistrations AutomaticRestart::CarriedOver() const
{
    const Lock guard(lock);
    return carriedOver;
}

SmartPointer<IBroadcastProvider> AutomaticRestart::CarriedOverProvider() const
{
    const Lock guard(lock);
    return carriedOver.Provider;
}

void AutomaticRestart::Recover(Recovery& current)
{
    if (current.What == Kind::Stop)
    {
        server.StopFor(current);
        return;
    }
    if (!WaitForPace(current))
    {
        return;
    }
    for (std::int32_t delay = 1; !server.RestartFor(current, delay) && !current.IsOverWithin(1000 * delay);
         delay = std::min(2 * delay, LongestRetryDelaySeconds))
    {
    }
}

bool AutomaticRestart::WaitForPace(Recovery& current)
{
    using std::chrono::steady_clock;
    std::chrono::milliseconds wait;
    {
        const Lock guard(lock);
        wait = std::chrono::ceil<std::chrono::milliseconds>(RestartPace - (steady_clock::now() - lastRestart));
    }
    if (current.IsOverWithin(static_cast<std::int32_t>(std::clamp(wait, {}, RestartPace).count())))
    {
        return false;
    }
    const Lock guard(lock);
    lastRestart = steady_clock::now();
    return true;
}

AutomaticRestart::Cancellation::Cancellation(AutomaticRestart& restart) noexcept
    : restart(restart)
{
}

AutomaticRestart::Cancellation::~Cancellation()
{
    if (!cancelled.IsNull())
    {
        restart.log.Guard("Failed to wait for the background operation", [this] { cancelled->Join(); });
    }
}

void AutomaticRestart::Cancellation::Cancel()
{
    const Lock guard(restart.lock);
    if (!restart.recovery.IsNull())
    {
        restart.recovery->End();
        cancelled = std::move(restart.recovery);
    }
    restart.state = State::Idle;
    restart.carriedOver = HostRegistrations();
}

AutomaticRestart::Recovery::Recovery(AutomaticRestart& restart, Kind kind, const SmartPointer<Recovery>& former)
    : What(kind)
    , restart(restart)
    , former(former)
    , over(false, EventResetMode::ManualReset)
    , thread(new Thread(MakeDelegate(*this, &Recovery::Run)))
{
}

void AutomaticRestart::Recovery::Start()
{
    thread->SetName("Background");
    thread->Start();
}

void AutomaticRestart::Recovery::Join()
{
    thread->Join();
}

void AutomaticRestart::Recovery::End()
{
    over.Set();
}

bool AutomaticRestart::Recovery::IsOverWithin(std::int32_t milliseconds) const
{
    return over.WaitOne(milliseconds);
}

void AutomaticRestart::Recovery::Run()
{
    restart.log.Guard("Background operation failed", [this] {
        restart.log.Write(What == Kind::Restart ? "Asynchronous restart triggered" : "Asynchronous stop triggered",
                          LogStreamLevel::Critical);
        if (!former.IsNull())
        {
            former->End();
            former->Join();
            former = nullptr;
        }
        restart.Recover(*this);
    });
}
} // namespace Zent::Discovery::Server
