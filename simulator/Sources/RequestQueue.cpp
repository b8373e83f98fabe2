#include "RequestQueue.h"

#include <utility>

namespace Zent::Discovery::Simulator
{
RequestQueue::RequestQueue(std::chrono::milliseconds delay)
    : delay(delay)
{
}

void RequestQueue::Push(Request request)
{
    const std::lock_guard guard(lock);
    if (entries.size() < MaximumCount)
    {
        entries.push_back({Clock::now() + delay, std::move(request)});
        changed.notify_one();
    }
}

std::optional<Request> RequestQueue::Take()
{
    std::unique_lock guard(lock);
    changed.wait(guard, [this] { return isClosed || !entries.empty(); });
    if (!isClosed)
    {
        changed.wait_until(guard, entries.front().Due, [this] { return isClosed; });
    }
    if (isClosed)
    {
        return std::nullopt;
    }
    Request request = std::move(entries.front().What);
    entries.pop_front();
    return request;
}

void RequestQueue::Close()
{
    const std::lock_guard guard(lock);
    isClosed = true;
    changed.notify_all();
}
} // namespace Zent::Discovery::Simulator
