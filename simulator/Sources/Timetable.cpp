#include "Timetable.h"

#include <algorithm>
#include <utility>

namespace Zent::Discovery::Simulator
{
void Timetable::Add(Time due, const Delivery& delivery)
{
    if (heap.size() < MaximumCount)
    {
        heap.push_back({due, added++, delivery});
        std::push_heap(heap.begin(), heap.end());
    }
}

std::optional<Timetable::Time> Timetable::Next() const
{
    return heap.empty() ? std::nullopt : std::optional(heap.front().Due);
}

Delivery Timetable::Take()
{
    std::pop_heap(heap.begin(), heap.end());
    Delivery delivery = std::move(heap.back().What);
    heap.pop_back();
    return delivery;
}
} // namespace Zent::Discovery::Simulator
