#pragma once

#include "system/Collections/Generic/Queue.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Semaphore.h"
#include "system/Threading/Thread.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace Zent::Discovery
{
/// A bounded queue from many threads to one. The consumer takes all that waits under one lock and then works it off,
/// and is woken only when it sleeps; what it has not begun to handle counts as waiting all the while.
///
/// To shut down: tell the consumer's loop to end, then Close, which wakes it; what still waits goes with the queue.
template <class T>
class HandOver final
{
public:
    explicit HandOver(std::int32_t capacity)
        : capacity(capacity)
        , wakeUps(0, capacity)
    {
    }

    HandOver(const HandOver&) = delete;
    HandOver& operator=(const HandOver&) = delete;

    /// False when as many as the capacity wait. Never waits for the consumer. Any thread.
    /// @throws IOException when a consumer that sleeps cannot be woken; the value waits all the same, and the next one
    /// tries again.
    bool TryAdd(T value)
    {
        bool mustWake = false;
        {
            const Nfx::System::Threading::Lock lock(pending.SyncRoot());
            if (waiting.load(std::memory_order_relaxed) >= capacity)
            {
                return false;
            }
            pending.Enqueue(std::move(value));
            waiting.fetch_add(1, std::memory_order_relaxed);
            mustWake = std::exchange(isConsumerAsleep, false);
        }
        if (mustWake)
        {
            Wake();
        }
        return true;
    }

    /// How many wait at this moment. Any thread.
    std::int32_t Count() const noexcept { return waiting.load(std::memory_order_relaxed); }

    /// Takes the one that has waited longest; false when there is none. The consumer.
    bool TryTake(T& value)
    {
        if (taken.Count() == 0)
        {
            const Nfx::System::Threading::Lock lock(pending.SyncRoot());
            taken.Swap(pending);
        }
        if (taken.Count() == 0)
        {
            return false;
        }
        waiting.fetch_sub(1, std::memory_order_relaxed);
        value = taken.Dequeue();
        return true;
    }

    /// Sleeps until something waits or Close is called; may return earlier. False when the timeout, in milliseconds,
    /// was over first; -1 waits without limit. The consumer.
    /// @throws IOException when the platform cannot wait; after a pause, so that a loop around it does not spin.
    bool Await(std::int32_t timeout = -1)
    {
        {
            const Nfx::System::Threading::Lock lock(pending.SyncRoot());
            if (isClosed || pending.Count() != 0)
            {
                return true;
            }
            isConsumerAsleep = true;
        }
        try
        {
            return wakeUps.WaitOne(timeout);
        }
        catch (const Nfx::System::IO::IOException&)
        {
            constexpr std::int32_t PauseMilliseconds = 1000;
            Nfx::System::Threading::Thread::Sleep(PauseMilliseconds);
            throw;
        }
    }

    /// Wakes the consumer, and does not let it sleep any more. May be called twice. Any thread.
    /// @throws IOException when it cannot be woken; nothing changes.
    void Close()
    {
        const Nfx::System::Threading::Lock lock(pending.SyncRoot());
        if (!isClosed)
        {
            wakeUps.Release();
            isClosed = true;
        }
    }

private:
    // Outside of the queue's lock, which the consumer wants as soon as it wakes.
    void Wake()
    {
        try
        {
            wakeUps.Release();
        }
        catch (const Nfx::System::Exception&)
        {
            const Nfx::System::Threading::Lock lock(pending.SyncRoot());
            isConsumerAsleep = true;
            throw;
        }
    }

    const std::int32_t capacity;
    Nfx::System::Threading::Semaphore wakeUps;           // a permit each time the consumer has to get up
    Nfx::System::Collections::Generic::Queue<T> pending; // guarded by its SyncRoot
    bool isConsumerAsleep = false;                       // the same: it sleeps or is about to, and nobody wakes it yet
    bool isClosed = false;                               // the same
    Nfx::System::Collections::Generic::Queue<T> taken;   // used by the consumer alone
    std::atomic<std::int32_t> waiting{0};                // pending and taken; raised under the lock
};
} // namespace Zent::Discovery
