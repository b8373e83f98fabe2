#include "endtoend/Growth.h"

#include "endtoend/LoadGenerator.h"

#include <algorithm>
#include <memory>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
constexpr std::size_t ReceiveBuffer = 100'000; // bytes of what the system counts for 64 KiB

/// So many datagrams fit the receive buffer in any case.
std::uint64_t WindowFor(std::size_t size)
{
    return std::clamp<std::uint64_t>(ReceiveBuffer / (2 * size + 1000), 1, 40);
}
} // namespace

void Growth::Measure(const Contender& library, const std::string& folder, bool isQuick)
{
    const std::uint64_t bytes = isQuick ? 1'000'000 : 40'000'000;
    for (const std::size_t products : {0U, 4U, 8U, 16U, 32U, 48U, 64U, 96U, 128U})
    {
        HostProcess host(library, Level::None, folder);
        const Signature signature(products, products);
        const auto generator = std::make_unique<LoadGenerator>(host, signature);
        const std::size_t size = signature.Text().size();
        const std::int64_t before = host.CpuTime();
        const Run run = generator->InWindow(bytes / size, WindowFor(size));
        const auto used = static_cast<double>(host.CpuTime() - before);
        TimeBySize.emplace_back(size, used / 1e3 / static_cast<double>(run.CallBacks));
    }
    HostProcess host(library, Level::None, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    host.State().Hold = true;
    for (int waiting = 0; waiting <= 512; waiting += 32)
    {
        MemoryByTasks.emplace_back(waiting, static_cast<double>(host.Resident()));
        for (int task = 0; task < 32; ++task)
        {
            generator->SendUnanswered();
        }
        usleep(isQuick ? 5'000 : 50'000); // the parser needs less than a millisecond for them
    }
    host.State().Hold = false;
}
} // namespace Benchmarks
