#pragma once

#include "system/Object.h"

#include <atomic>
#include <cstdint>

namespace Nfx::System
{
/// Counts the SmartPointers that share one object. Changed from any thread, always atomically.
class _RefCounter final : public Object
{
public:
    _RefCounter() = default;

    void Increment() noexcept { aliases.fetch_add(1, std::memory_order_relaxed); }

    /// The count after the decrement. Whoever gets 0 sees all that the other owners did to the object.
    std::int32_t Decrement() noexcept { return aliases.fetch_sub(1, std::memory_order_acq_rel) - 1; }

    std::int32_t Count() const noexcept { return aliases.load(std::memory_order_relaxed); }

private:
    std::atomic<std::int32_t> aliases{0};
};
} // namespace Nfx::System
