#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Benchmarks
{
/// What a host program tells the bench, in memory that both have mapped: the bench looks at it without disturbing the
/// host by as much as a system call. Times are nanoseconds of the monotonic clock.
struct SharedState
{
    static constexpr std::size_t SampleCount = 1 << 16;
    static constexpr std::size_t CycleCount = 100;

    std::atomic<std::uint64_t> CallBacks{0};                            // written by the host
    std::array<std::atomic<std::int64_t>, SampleCount> CallBackTimes{}; // by number of the signature; by the host

    std::atomic<bool> Hold{false}; // set by the bench: callbacks wait until it is taken back

    // The latest Discover, written by the host before it answers the command.
    std::atomic<std::int64_t> DiscoverStart{0}; // of the real-time clock, which stamps datagrams
    std::atomic<std::int64_t> DiscoverDuration{0};

    std::array<std::atomic<std::int64_t>, CycleCount> Cycles{}; // durations of StartServer and StopServer together
};
} // namespace Benchmarks
