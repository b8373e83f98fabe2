#pragma once

#include "Os/WaitObject.h"

#include <string_view>

namespace Nfx::Os
{
/// Events. One with manual reset stays signalled until it is reset; any other lets one wait through and resets itself.
/// Names as in ISemaphore. Operations report success as a truth value.
class IEvent
{
public:
    virtual ~IEvent() = default;

    virtual bool Close(ObjectHandle event) = 0;

    virtual bool Create(
        ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status) = 0;

    /// False when no event has this name.
    virtual bool Open(ObjectHandle& event, std::string_view name) = 0;

    virtual bool Reset(ObjectHandle event) = 0;

    virtual bool Set(ObjectHandle event) = 0;

    /// True when the event was signalled within the timeout: milliseconds, -1 waits without limit, below that nothing
    /// is waited for. False as well when the thread was interrupted.
    virtual bool Wait(ObjectHandle event, std::int32_t timeout) = 0;
};
} // namespace Nfx::Os
