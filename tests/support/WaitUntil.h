#pragma once

#include <chrono>
#include <thread>

namespace Tests
{
/// Polls a condition that no event tells of; false when it does not come true within the deadline.
template <class TCondition>
bool WaitUntil(TCondition&& condition, std::chrono::milliseconds deadline = std::chrono::seconds(10))
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() >= end)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}
} // namespace Tests
