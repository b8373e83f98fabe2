#include "system/Threading/Interlocked.h"

#include "system/Exceptions.h"

#include <atomic>

namespace Nfx::System::Threading
{
template <class T>
auto Interlocked::Atomic(T* location)
{
    if (location == nullptr)
    {
        throw ArgumentNullException("Corelib/Sources/System/Threading/Interlocked", 91);
    }
    static_assert(alignof(T) >= std::atomic_ref<typename T::Value>::required_alignment);
    return std::atomic_ref<typename T::Value>(location->value);
}

Int32 Interlocked::Increment(Int32* location)
{
    return ++Atomic(location);
}

Int64 Interlocked::Increment(Int64* location)
{
    return ++Atomic(location);
}

Int32 Interlocked::Decrement(Int32* location)
{
    return --Atomic(location);
}

Int64 Interlocked::Decrement(Int64* location)
{
    return --Atomic(location);
}

Int32 Interlocked::Exchange(Int32* location, Int32 value)
{
    return Atomic(location).exchange(value);
}

Int64 Interlocked::Exchange(Int64* location, Int64 value)
{
    return Atomic(location).exchange(value);
}

Int32 Interlocked::CompareExchange(Int32* location, Int32 value, Int32 comparand)
{
    std::int32_t number = comparand;
    Atomic(location).compare_exchange_strong(number, value);
    return number;
}

Int64 Interlocked::CompareExchange(Int64* location, Int64 value, Int64 comparand)
{
    std::int64_t number = comparand;
    Atomic(location).compare_exchange_strong(number, value);
    return number;
}
} // namespace Nfx::System::Threading
