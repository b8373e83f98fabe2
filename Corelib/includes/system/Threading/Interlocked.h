#pragma once

#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/Int64.h"

#include <atomic>

namespace Nfx::System::Threading
{
/// Changes numbers that several threads share, each time in one step that no other can get in between. Other threads
/// must change and read them through here as well: Int32 and Int64 themselves are plain values. A null location raises
/// ArgumentNullException.
class Interlocked final
{
public:
    Interlocked() = delete;

    /// The number after the change.
    static Int32 Increment(Int32* location) { return ++Atomic(location); }

    static Int64 Increment(Int64* location) { return ++Atomic(location); }

    /// The number after the change.
    static Int32 Decrement(Int32* location) { return --Atomic(location); }

    static Int64 Decrement(Int64* location) { return --Atomic(location); }

    /// Stores the value; the number before.
    static Int32 Exchange(Int32* location, Int32 value) { return Atomic(location).exchange(value); }

    static Int64 Exchange(Int64* location, Int64 value) { return Atomic(location).exchange(value); }

    /// Stores the value if the number equals comparand; the number before, either way.
    static Int32 CompareExchange(Int32* location, Int32 value, Int32 comparand)
    {
        std::int32_t number = comparand;
        Atomic(location).compare_exchange_strong(number, value);
        return number;
    }

    static Int64 CompareExchange(Int64* location, Int64 value, Int64 comparand)
    {
        std::int64_t number = comparand;
        Atomic(location).compare_exchange_strong(number, value);
        return number;
    }

private:
    template <class T>
    static std::atomic_ref<typename T::Value> Atomic(T* location)
    {
        if (location == nullptr)
        {
            throw ArgumentNullException("Corelib/Sources/System/Threading/Interlocked", 91);
        }
        static_assert(alignof(T) >= std::atomic_ref<typename T::Value>::required_alignment);
        return std::atomic_ref<typename T::Value>(location->value);
    }
};
} // namespace Nfx::System::Threading
