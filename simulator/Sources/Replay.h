#pragma once

#include "Recording.h"
#include "SimulatedDevice.h"

#include <chrono>
#include <span>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// A device that answers as one that was recorded.
struct ReplayedDevice
{
    SimulatedDevice Device;
    std::chrono::milliseconds Delay; // of its answers, as recorded
};

/// Makes devices of recordings.
class Replay final
{
public:
    Replay() = delete;

    /// A device for each sender, which says its first signature, or is what its first Hello says; and one for each
    /// datagram that is not understood. Other messages are left out.
    static std::vector<ReplayedDevice> DevicesOf(std::span<const RecordedDatagram> datagrams);
};
} // namespace Zent::Discovery::Simulator
