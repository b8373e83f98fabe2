#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Zent::Discovery::Simulator
{
/// The one cable that all devices send through: each datagram takes its time. It has no clock: times are passed in.
/// Main thread only.
class Cable final
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// The next datagram may leave then.
    Time FreeAt() const { return freeAt; }

    /// When a datagram that leaves the device now and is held up so long comes out, after all before it.
    Time PassedAt(Time now, std::chrono::microseconds holdUp);

    /// A datagram of so many bytes leaves now; 0 Mbit/s is no limit.
    void Occupy(Time now, std::size_t bytes, std::uint32_t megabitsPerSecond);

private:
    Time freeAt{};
    Time lastPassed{};
};
} // namespace Zent::Discovery::Simulator
