#pragma once

#include "Inventory/Event.h"

#include <cstddef>
#include <deque>
#include <optional>

namespace Zent::Discovery::Inventory
{
/// Events that the host program has not yet taken. When it takes none, the oldest are lost.
class EventQueue final
{
public:
    static constexpr std::size_t Maximum = 65536;

    void Raise(Event event);
    std::optional<Event> Next();

    /// How many events were lost so far.
    std::size_t Lost() const;

private:
    std::deque<Event> events;
    std::size_t lost = 0;
};
} // namespace Zent::Discovery::Inventory
