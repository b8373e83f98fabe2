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

    /// Microseconds of CPU a message over the bytes of a message. Of the time that passes, much is the sender's: few
    /// large datagrams fit the receive buffer at once.
    Points TimeBySize;

    /// Resident bytes over the tasks that wait because a callback does not return.
    Points MemoryByTasks;

    void Measure(const Contender& library, const std::string& folder, bool isQuick);
};
} // namespace Benchmarks
