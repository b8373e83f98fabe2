#pragma once

#include <new>
#include <utility>

namespace Nfx::System
{
/// Holds a process-wide value that is never destroyed, because threads may still use it while the process exits, and
/// that takes no memory of the heap for itself. For function-local statics.
template <class T>
class Immortal final
{
public:
    template <class... TArgs>
    explicit Immortal(TArgs&&... args)
        : value(*new (storage) T(std::forward<TArgs>(args)...))
    {
    }

    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& Get() const noexcept { return value; }

private:
    alignas(T) unsigned char storage[sizeof(T)];
    T& value;
};
} // namespace Nfx::System
