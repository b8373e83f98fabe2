#pragma once

#include <cstddef>

namespace Fuzzing
{
/// From construction to destruction counts the allocations of this thread, and lets some of them fail. One at a time on
/// a thread.
class AllocationFaults final
{
public:
    /// Only counts.
    AllocationFaults() noexcept;

    /// Lets the allocation of this number fail, counted from 1; when lasting, all later ones too.
    AllocationFaults(std::size_t number, bool lasting) noexcept;

    ~AllocationFaults();
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;

    std::size_t Count() const noexcept;

    /// Whether an allocation of this thread has failed since the latest construction.
    static bool HaveOccurred() noexcept;

    /// Ends counting and failing early: what reports a finding needs memory.
    static void Stop() noexcept;

    /// Neither counts nor fails while it lives: for what the fuzzer itself allocates.
    class Pause final
    {
    public:
        Pause() noexcept;
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        const bool wasActive;
    };
};
} // namespace Fuzzing
