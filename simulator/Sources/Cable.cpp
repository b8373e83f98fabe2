#include "Cable.h"

#include <algorithm>

namespace Zent::Discovery::Simulator
{
Cable::Time Cable::PassedAt(Time now, std::chrono::microseconds holdUp)
{
    lastPassed = std::max(lastPassed, now + holdUp);
    return lastPassed;
}

void Cable::Occupy(Time now, std::size_t bytes, std::uint32_t megabitsPerSecond)
{
    if (megabitsPerSecond == 0)
    {
        return;
    }
    constexpr std::uint64_t UdpHeader = 8;
    constexpr std::uint64_t FrameContent = 1480; // what a frame of 1500 bytes holds beside the IP header
    constexpr std::uint64_t FrameOverhead = 58;  // IP header, Ethernet header, checksum, preamble and gap
    const std::uint64_t content = bytes + UdpHeader;
    const std::uint64_t frames = (content + FrameContent - 1) / FrameContent;
    const std::uint64_t bits = (content + frames * FrameOverhead) * 8;
    freeAt = now + std::chrono::nanoseconds(bits * 1000 / megabitsPerSecond);
}
} // namespace Zent::Discovery::Simulator
