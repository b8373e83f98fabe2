#pragma once

#include <chrono>

namespace Tests
{
/// What StopServer may take once no callback runs, whatever is sent meanwhile; longer where the whole program is
/// slower.
constexpr std::chrono::milliseconds StopLimit{TIME_SCALE * 1000};

/// How long an action takes.
template <class TAction>
std::chrono::milliseconds TimeOf(TAction&& action)
{
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}
} // namespace Tests
