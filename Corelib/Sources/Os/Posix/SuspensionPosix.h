#pragma once

#include <atomic>
#include <cstdint>
#include <pthread.h>
#include <semaphore.h>

namespace Nfx::Os
{
/// Stops a thread where it is and lets it go on, by a handshake over one real-time signal. Each thread that is created
/// here has one. Suspend and Resume are called by one thread at a time.
class SuspensionPosix final
{
public:
    SuspensionPosix();
    ~SuspensionPosix();
    SuspensionPosix(const SuspensionPosix&) = delete;
    SuspensionPosix& operator=(const SuspensionPosix&) = delete;

    /// The signal that threads must leave unblocked.
    static int Signal() noexcept;

    /// Makes this the suspension of the calling thread; null before the thread ends.
    static void SetCurrent(SuspensionPosix* suspension) noexcept;

    /// Until as many calls of Allow the calling thread goes on when it is suspended, or sleeps on when it sleeps.
    static void Defer() noexcept;
    static void Allow() noexcept;

    /// Returns when the thread is stopped, or will be before it gets out of what it deferred the suspension for.
    /// False when it is suspended already or the process uses the signal for something else. The thread must live and
    /// not be the calling one.
    bool Suspend(pthread_t thread);

    /// False when the thread is not suspended.
    bool Resume(pthread_t thread);

private:
    static void OnSignal(int signal);

    void OnSignalOfThisThread() noexcept;
    void StopHere() noexcept;
    bool IsRequested() noexcept;
    void StopUntilResumed() noexcept;

    std::atomic<std::uint32_t> generation{0};   // odd while suspended; written by Suspend and Resume
    std::atomic<std::uint32_t> acknowledged{0}; // the last odd generation that the thread has seen
    sem_t seen;                                 // posted once for each
    std::atomic<std::int32_t> deferrals{0};     // these three belong to the thread and its signal handler
    std::atomic<bool> isDeferred{false};
    std::atomic<bool> isStopped{false};
};
} // namespace Nfx::Os
