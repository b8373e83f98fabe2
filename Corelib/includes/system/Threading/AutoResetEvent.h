#pragma once

#include "system/Threading/EventWaitHandle.h"

namespace Nfx::System::Threading
{
/// An event that lets one wait through each time it is set.
class AutoResetEvent final : public EventWaitHandle
{
public:
    /// @throws IOException when the platform refuses.
    explicit AutoResetEvent(Boolean signalled)
        : EventWaitHandle(signalled, EventResetMode::AutoReset)
    {
    }
};
} // namespace Nfx::System::Threading
