#pragma once

#include <cstdint>

namespace Benchmarks
{
/// The port on which devices listen: tells when requests were on the wire.
class DevicePort final
{
public:
    /// @throws std::runtime_error when the port cannot be bound.
    DevicePort();
    ~DevicePort();
    DevicePort(const DevicePort&) = delete;
    DevicePort& operator=(const DevicePort&) = delete;

    /// Waits for a datagram; when the system took it over from its sender, in nanoseconds of the real-time clock.
    /// @throws std::runtime_error when none comes.
    std::int64_t NextArrival() const;

private:
    int descriptor;
};
} // namespace Benchmarks
