#pragma once

#include "system/Int32.h"
#include "system/Object.h"
#include "system/Threading/Interlocked.h"

namespace Nfx::System
{
/// Counts the SmartPointers that share one object. Changed from any thread, always atomically.
class _RefCounter : public Object
{
public:
    _RefCounter() = default;

    void Increment() noexcept { Threading::Interlocked::Increment(&aliases); }

    /// The count after the decrement. Whoever gets 0 sees all that the other owners did to the object.
    Int32 Decrement() noexcept { return Threading::Interlocked::Decrement(&aliases); }

    Int32 Count() const noexcept { return Threading::Interlocked::CompareExchange(&aliases, 0, 0); }

    /// Whether the object is part of the counter's own memory.
    bool HoldsObject() const noexcept { return holdsObject; }

protected:
    explicit _RefCounter(bool holdsObject) noexcept
        : holdsObject(holdsObject)
    {
    }

private:
    mutable Int32 aliases; // reading it atomically writes it
    const bool holdsObject = false;
};

/// A counter with the memory of its object, so that both are one allocation. Whoever lets go last destroys the object,
/// then the counter.
template <class T>
class _RefCounterWithObject final : public _RefCounter
{
public:
    _RefCounterWithObject() noexcept
        : _RefCounter(true)
    {
    }

    void* Place() noexcept { return memory; }

private:
    alignas(T) unsigned char memory[sizeof(T)];
};
} // namespace Nfx::System
