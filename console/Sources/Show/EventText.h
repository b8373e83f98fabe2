#pragma once

#include "Inventory/Event.h"
#include "Text/Style.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// What an event means to the user, in sentences of one line. The texts may hold text from outside.
struct EventText
{
    std::string Text;
    Style Look;

    /// Several when a device has changed in several ways; none for events of a search.
    static std::vector<EventText> Of(const Inventory::Event& event);
};
} // namespace Zent::Discovery::Console
