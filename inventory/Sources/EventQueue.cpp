#include "Inventory/EventQueue.h"

#include <utility>

namespace Zent::Discovery::Inventory
{
void EventQueue::Raise(Event event)
{
    if (events.size() == Maximum)
    {
        events.pop_front();
        ++lost;
    }
    events.push_back(std::move(event));
}

std::optional<Event> EventQueue::Next()
{
    if (events.empty())
    {
        return std::nullopt;
    }
    std::optional<Event> event = std::move(events.front());
    events.pop_front();
    return event;
}

std::size_t EventQueue::Lost() const
{
    return lost;
}
} // namespace Zent::Discovery::Inventory
