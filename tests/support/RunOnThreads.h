#pragma once

#include <thread>
#include <vector>

namespace Tests
{
/// Runs an action on so many threads at once, each with its number from 0 on, and waits for all of them.
template <class TAction>
void RunOnThreads(int count, const TAction& action)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
    {
        threads.emplace_back([&action, number] { action(number); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}
} // namespace Tests
