#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Tests
{
/// Holds threads up until it is opened.
class Gate final
{
public:
    void Open()
    {
        const std::lock_guard lock(mutex);
        isOpen = true;
        changed.notify_all();
    }

    /// Waits until it is open; false after ten seconds.
    bool Pass()
    {
        std::unique_lock lock(mutex);
        ++arrived;
        changed.notify_all();
        return changed.wait_for(lock, std::chrono::seconds(10), [this] { return isOpen; });
    }

    /// Waits until so many threads have come to the gate; false after ten seconds.
    bool WaitForArrivals(int count)
    {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(10), [&] { return arrived >= count; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
    int arrived = 0;
};
} // namespace Tests
