#pragma once

#include "endtoend/HostProcess.h"

#include <string>
#include <utility>
#include <vector>

namespace Benchmarks
{
/// Cost of the library as work grows, for plots.
class Growth final
{
public:
    using Points = std::vector<std::pair<double, double>>;

    /// Microseconds a message in the window over the bytes of a message.
    Points TimeBySize;

    /// Resident bytes over the tasks that wait because a callback does not return.
    Points MemoryByTasks;

    void Measure(const Contender& library, const std::string& folder, bool isQuick);
};
} // namespace Benchmarks
