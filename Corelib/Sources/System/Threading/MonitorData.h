#pragma once

#include "Os/IMonitor.h"
#include "Os/IThread.h"
#include "Os/WaitObject.h"
#include "system/Threading/Monitor.h"

#include <atomic>
#include <cstdint>

namespace Nfx::System::Threading
{
/// A lock of the platform, with its owner and those who wait in it. Any thread; what needs the owner says so.
class Monitor::MonitorData final
{
public:
    /// @throws OutOfMemoryException when the platform has no lock to give.
    MonitorData();
    ~MonitorData();
    MonitorData(const MonitorData&) = delete;
    MonitorData& operator=(const MonitorData&) = delete;

    bool IsMine() const;

    void Enter();

    /// By the owner, like all that follows.
    void Exit();
    bool Wait(std::int32_t timeout);
    void Pulse();
    void PulseAll();

private:
    /// Out of the lock, however often it was entered, for a scope.
    class Outside;

    /// One thread in Wait: in the queue until it is pulsed or gives up.
    class Waiter;

    /// By the thread that has just entered the platform's lock.
    void TakeOver();

    /// By the owner, when entries is 0.
    void LetGo();

    Os::IMonitor& service;
    Os::IThread& threads;
    Os::MonitorRecord* const lock;
    std::atomic<std::uintptr_t> owner{0}; // a thread's id; others only learn that it is not theirs
    std::int32_t entries = 0;             // the owner's, like the queue
    Waiter* firstWaiter = nullptr;
    Waiter* lastWaiter = nullptr;
};
} // namespace Nfx::System::Threading
