#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

namespace Zent::Discovery::Server
{
/// Decides when the memory of what has waited goes back to the system. The process is the host's, and on Windows has 32
/// bits; but giving back goes through the whole heap of the host, whose threads stand still meanwhile. So it is done
/// after much has waited, when no more comes, and seldom. One thread.
class MemoryReturn final
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Bytes of datagrams. What is made of them takes at least twice their memory, and so 16 MiB.
    static constexpr std::int64_t Threshold = std::int64_t{8} * 1024 * 1024;

    static constexpr std::chrono::milliseconds Silence{500}; // until a rush counts as over
    static constexpr std::chrono::milliseconds Pace{60'000};

    /// So many bytes wait at this moment.
    void Note(std::int64_t waiting) noexcept { most = std::max(most, waiting); }

    /// How long nothing has to come from now on before memory is given back, in milliseconds; -1 when there is none.
    std::int32_t DueIn(Time now) const noexcept
    {
        if (most < Threshold)
        {
            return -1;
        }
        const auto rest = last ? std::chrono::ceil<std::chrono::milliseconds>(*last + Pace - now) : Silence;
        return static_cast<std::int32_t>(std::max(rest, Silence).count());
    }

    void Done(Time now) noexcept
    {
        most = 0;
        last = now;
    }

private:
    std::int64_t most = 0; // bytes that have waited at a time, since memory was given back
    std::optional<Time> last;
};
} // namespace Zent::Discovery::Server
