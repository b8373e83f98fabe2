#pragma once

#include "system/Int32.h"
#include "system/Object.h"
#include "system/Threading/Interlocked.h"

namespace Nfx::System
{
/// Counts the SmartPointers that share one object. Changed from any thread, always atomically.
class _RefCounter final : public Object
{
public:
    _RefCounter() = default;

    void Increment() noexcept { Threading::Interlocked::Increment(&aliases); }

    /// The count after the decrement. Whoever gets 0 sees all that the other owners did to the object.
    Int32 Decrement() noexcept { return Threading::Interlocked::Decrement(&aliases); }

    Int32 Count() const noexcept { return Threading::Interlocked::CompareExchange(&aliases, 0, 0); }

private:
    mutable Int32 aliases; // reading it atomically writes it
};
} // namespace Nfx::System
