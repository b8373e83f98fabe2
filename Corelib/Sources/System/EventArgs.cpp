#include "system/EventArgs.h"

#include "system/Immortal.h"

namespace Nfx::System
{
const EventArgs& EventArgs::Empty()
{
    static const Immortal<EventArgs> empty;
    return empty.Get();
}
} // namespace Nfx::System
