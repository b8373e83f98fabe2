#pragma once

#include <cstdint>
#include <ctime>

namespace Benchmarks
{
/// Nanoseconds of a clock.
inline std::int64_t Now(clockid_t clock = CLOCK_MONOTONIC)
{
    timespec now{};
    clock_gettime(clock, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}
} // namespace Benchmarks
