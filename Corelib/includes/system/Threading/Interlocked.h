#pragma once

#include "system/Int32.h"
#include "system/Int64.h"

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
    static Int32 Increment(Int32* location);
    static Int64 Increment(Int64* location);

    /// The number after the change.
    static Int32 Decrement(Int32* location);
    static Int64 Decrement(Int64* location);

    /// Stores the value; the number before.
    static Int32 Exchange(Int32* location, Int32 value);
    static Int64 Exchange(Int64* location, Int64 value);

    /// Stores the value if the number equals comparand; the number before, either way.
    static Int32 CompareExchange(Int32* location, Int32 value, Int32 comparand);
    static Int64 CompareExchange(Int64* location, Int64 value, Int64 comparand);

private:
    template <class T>
    static auto Atomic(T* location);
};
} // namespace Nfx::System::Threading
