#include "Programs/MessageQueue.h"

#include <utility>

using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Programs
{
void MessageQueue::Push(DeviceMessage message)
{
    const Lock guard(lock);
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
    const Lock guard(lock);
    while (!HasNews() && WaitUntil(deadline))
    {
    }
    if (!messages.empty())
    {
        const TimePoint end = TimePoint::clock::now() + GatherTime;
        while (!interrupted && !isWoken && WaitUntil(end))
        {
        }
    }
    isWoken = false;
    if (interrupted)
    {
        return {};
    }
    bytes = 0;
    return std::exchange(messages, {});
}

bool MessageQueue::HasNews() const
{
    return interrupted || isWoken || !messages.empty();
}

bool MessageQueue::WaitUntil(const std::optional<TimePoint>& time)
{
    if (!time)
    {
        changed.wait(lock);
        return true;
    }
    return changed.wait_until(lock, *time) == std::cv_status::no_timeout;
}

void MessageQueue::Wake()
{
    const Lock guard(lock);
    isWoken = true;
    changed.notify_all();
}

void MessageQueue::Interrupt()
{
    const Lock guard(lock);
    interrupted = true;
    changed.notify_all();
}

bool MessageQueue::IsInterrupted() const
{
    const Lock guard(lock);
    return interrupted;
}

bool MessageQueue::ClearInterruption()
{
    const Lock guard(lock);
    return std::exchange(interrupted, false);
}

std::size_t MessageQueue::Lost() const
{
    const Lock guard(lock);
    return lost;
}
} // namespace Zent::Discovery::Programs
