#pragma once

namespace Tests
{
/// Lets allocations of this program fail, whichever thread makes them: those by operator new, and on Linux by malloc.
/// On Windows the compiler's own support of thread_local needs malloc, and ends the program when that fails.
class MemoryFaults final
{
public:
    MemoryFaults() = delete;

    static constexpr int Always = 1'000'000'000;

    /// Lets the allocations from number first on fail, counted from 1 from now on.
    static void Fail(int first, int count = 1);

    /// Takes the faults back and counts no longer. Returns how many allocations have failed since Fail.
    static int Clear() noexcept;

    /// How many allocations there were, and how many of them failed, from Fail to Clear.
    static int Seen() noexcept;
    static int Failed() noexcept;

    /// For the allocators: counts an allocation; true when it has to fail.
    static bool Strikes() noexcept;

    /// Says, while it lives, whether the allocations of this thread count and fail; without one they do. Tests
    /// allocate, too.
    class Scope final
    {
    public:
        explicit Scope(bool isShort) noexcept;
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        const bool wasShort;
    };
};
} // namespace Tests
