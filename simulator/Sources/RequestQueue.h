#pragma once

#include "Request.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

namespace Zent::Discovery::Simulator
{
/// Hands requests from the receiving threads to the thread that answers, each when the devices' delay has passed.
/// Any thread.
class RequestQueue final
{
public:
    explicit RequestQueue(std::chrono::milliseconds delay);

    /// Never waits; drops the request when MaximumCount wait already, as a device's own buffer would.
    void Push(Request request);

    /// Waits for the oldest request and its time; nothing once Close was called.
    std::optional<Request> Take();

    /// Ends a waiting Take, and all further ones.
    void Close();

    static constexpr std::size_t MaximumCount = 10000;

private:
    using Clock = std::chrono::steady_clock;

    struct Entry
    {
        Clock::time_point Due;
        Request What;
    };

    const std::chrono::milliseconds delay;
    std::mutex lock;
    std::condition_variable changed;
    std::deque<Entry> entries; // guarded by lock
    bool isClosed = false;     // guarded by lock
};
} // namespace Zent::Discovery::Simulator
