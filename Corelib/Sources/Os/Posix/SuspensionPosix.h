#pragma once

#include <atomic>
#include <cstdint>
#include <pthread.h>

namespace Nfx::Os
{
/// Stops a thread where it is, by one real-time signal, and lets it go on. Each thread that is created here has one.
/// Suspend and Resume are called by one thread at a time.
class SuspensionPosix final
{
public:
    SuspensionPosix() = default;
    SuspensionPosix(const SuspensionPosix&) = delete;
    SuspensionPosix& operator=(const SuspensionPosix&) = delete;

    /// The signal that threads must leave unblocked.
    static int Signal() noexcept;

    /// Makes this the suspension of the calling thread; null before the thread ends.
    static void SetCurrent(SuspensionPosix* suspension) noexcept;

    /// From Defer on, a suspension does not stop the calling thread where it is; the matching Allow does. Calls nest.
    static void Defer() noexcept;
    static void Allow() noexcept;

    /// Returns when the thread is stopped, or will be before it gets out of what it deferred the suspension for.
    /// False when it is suspended already or the process uses the signal for something else. The thread must live and
    /// not be the calling one.
    bool Suspend(pthread_t thread);

    /// False when the thread is not suspended.
    bool Resume() noexcept;

private:
    enum : int
    {
        Running,
        Requested, // the signal is on its way
        Deferred,  // the thread knows, and will stop when it may
        Stopped
    };

    static void OnSignal(int signal);

    void OnSignalOfThisThread() noexcept;
    void StopUntilResumed() noexcept;

    std::atomic<int> state{Running};        // lock-free, so that the signal's handler may wait for it
    std::atomic<std::int32_t> deferrals{0}; // of the thread and its signal handler
};
} // namespace Nfx::Os
