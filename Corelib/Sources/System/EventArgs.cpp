#include "system/EventArgs.h"

namespace Nfx::System
{
const EventArgs& EventArgs::Empty()
{
    static const EventArgs& empty = *new EventArgs(); // never destroyed: threads may still raise while a process exits
    return empty;
}
} // namespace Nfx::System
