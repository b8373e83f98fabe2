#pragma once

#include "system/Object.h"

namespace Nfx::System
{
/// What an event hands to its handlers; events with data derive their own.
class EventArgs : public Object
{
public:
    EventArgs() = default;

    static const EventArgs& Empty();
};
} // namespace Nfx::System
