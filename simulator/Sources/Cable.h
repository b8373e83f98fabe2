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

    /// A datagram of so many bytes leaves now; 0 Mbit/s is no limit.
    void Occupy(Time now, std::size_t bytes, std::uint32_t megabitsPerSecond);

private:
    Time freeAt{};
};
} // namespace Zent::Discovery::Simulator
