#include "Commands/MessageQueue.h"

#include <utility>

using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
void MessageQueue::Push(DeviceMessage message)
{
    const std::lock_guard guard(lock);
    if (bytes + message.Document.size() > MaximumBytes)
    {
        ++lost;
        return;
    }
    bytes += message.Document.size();
    messages.push_back(std::move(message));
    if (messages.size() == 1)
    {
        changed.notify_all();
    }
}

std::deque<DeviceMessage> MessageQueue::Take(const std::optional<TimePoint>& deadline)
{
    std::unique_lock guard(lock);
    const auto hasNews = [this] { return interrupted || isWoken || !messages.empty(); };
    if (deadline)
    {
        changed.wait_until(guard, *deadline, hasNews);
    }
    else
    {
        changed.wait(guard, hasNews);
    }
    if (!messages.empty())
    {
        changed.wait_for(guard, GatherTime, [this] { return interrupted || isWoken; });
    }
    isWoken = false;
    if (interrupted)
    {
        return {};
    }
    bytes = 0;
    return std::exchange(messages, {});
}

void MessageQueue::Wake()
{
    const std::lock_guard guard(lock);
    isWoken = true;
    changed.notify_all();
}

void MessageQueue::Interrupt()
{
    const std::lock_guard guard(lock);
    interrupted = true;
    changed.notify_all();
}

bool MessageQueue::IsInterrupted() const
{
    const std::lock_guard guard(lock);
    return interrupted;
}

std::size_t MessageQueue::Lost() const
{
    const std::lock_guard guard(lock);
    return lost;
}
} // namespace Zent::Discovery::Console
