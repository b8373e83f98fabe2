#include "endtoend/Figure.h"

#include <algorithm>
#include <cmath>

namespace Benchmarks
{
const std::vector<Figure>& Figure::All()
{
    using enum Goal;
    static const std::vector<Figure> figures = {
        {"window_rate", "window rate, at most 40 on the way", "1/s", RatioAtLeast, 1.0, 0.9},
        {"even_rate", "highest even rate without loss", "1/s", RatioAtLeast, 0.95, 0.85},
        {"burst_10000", "callbacks of a burst of 10,000", "", RatioAtLeast, 1.8, 1.8},
        {"bursts_10x1000", "callbacks of 10 bursts of 1000, each 100 ms", "", AtLeast, 9500, 9500},
        {"bursts_100x100", "callbacks of 100 bursts of 100, each 10 ms", "", AtLeast, 10000, 10000},
        {"cable_rights", "callbacks of 1000 at 106,000/s, with rights", "", None, 0, 0},
        {"cable_plain", "callbacks of 1000 at 106,000/s, without", "", None, 0, 0},
        {"latency_100_p50", "latency at 100/s, p50", "us", None, 0, 0},
        {"latency_100_p99", "latency at 100/s, p99", "us", None, 0, 0},
        {"latency_5000_p50", "latency at 5,000/s, p50", "us", None, 0, 0},
        {"latency_5000_p99", "latency at 5,000/s, p99", "us", None, 0, 0},
        {"discover_wire_p50", "Discover() to the wire, p50", "us", RatioAtMost, 2.0, 2.0},
        {"discover_wire_p99", "Discover() to the wire, p99", "us", RatioAtMost, 3.0, 3.0},
        {"discover_call", "the call of Discover() alone", "us", RatioAtMost, 0.3, 0.3},
        {"cpu_1000", "CPU per 100,000 messages at 1,000/s", "s", None, 0, 0},
        {"cpu_10000", "CPU per 100,000 messages at 10,000/s", "s", None, 0, 0},
        {"cpu_window", "CPU per 100,000 messages in the window", "s", RatioAtMost, 1.5, 1.5},
        {"memory_growth", "growth of resident memory under load", "kB", AtMost, 256, 256},
        {"memory_peak", "peak of resident memory", "kB", AtMost, 10000, 10000},
        {"start_stop", "StartServer and StopServer together", "us", AtMost, 500, 500},
        {"datagram_64k", "slowest datagram of 64 KiB", "ms", AtMost, 50, 50},
    };
    return figures;
}

bool Figure::IsMet(double value, Level level) const
{
    return Kind == Goal::RatioAtLeast || Kind == Goal::AtLeast ? value >= GoalAt(level) : value <= GoalAt(level);
}

double Median(std::vector<double> values)
{
    if (values.empty())
    {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Percentile(std::vector<double> values, double percent)
{
    if (values.empty())
    {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const double rank = std::ceil(static_cast<double>(values.size()) * percent / 100) - 1;
    return values[static_cast<std::size_t>(std::max(rank, 0.0))];
}
} // namespace Benchmarks
