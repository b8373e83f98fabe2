#pragma once

#include "system/Threading/Lock.h"

#include <utility>

namespace Nfx::System
{
/// A value with its lock: it cannot be reached without. Any thread.
template <class T>
class Guarded final
{
public:
    Guarded() = default;
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    /// Runs action(value) under the lock and returns its result, which must not be a reference to the value.
    template <class TAction>
    auto Use(TAction&& action)
    {
        const Threading::Lock lock(guard);
        return std::forward<TAction>(action)(value);
    }

private:
    Threading::Monitor guard;
    T value NFX_GUARDED_BY(guard){};
};
} // namespace Nfx::System
