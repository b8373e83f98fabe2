#pragma once

#include "Signature.h"
#include "endtoend/HostProcess.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Benchmarks
{
/// What one run of the sender came to.
struct Run
{
    std::uint64_t Sent = 0;
    std::uint64_t CallBacks = 0;
    double Seconds = 0; // from the first datagram to the last

    double Rate() const { return Seconds > 0 ? static_cast<double>(Sent) / Seconds : 0; }

    bool IsComplete() const { return CallBacks == Sent; }
};

/// The devices: sends numbered signatures to the server's port on this machine, from one thread and one socket.
class LoadGenerator final
{
public:
    LoadGenerator(HostProcess& host, const Signature& signature);
    ~LoadGenerator();
    LoadGenerator(const LoadGenerator&) = delete;
    LoadGenerator& operator=(const LoadGenerator&) = delete;

    /// Lets the host receive some datagrams, so that its memory and its receive buffer have their size.
    void WarmUp();

    /// Never more than so many on their way; the seconds end with the last callback.
    Run InWindow(std::uint64_t count, std::uint64_t window);

    /// Evenly, as many per second. When the sender itself is held up it goes on later instead of catching up.
    Run AtRate(std::uint64_t count, double rate);

    /// As fast as one sender can, so many times, at intervals of so many nanoseconds.
    Run InBursts(std::uint64_t bursts, std::uint64_t size, std::int64_t interval);

    /// As a cable hands them over: each at its time, however short, and late ones at once. The sender keeps one
    /// processor busy meanwhile.
    Run ByCable(std::uint64_t count, double rate);

    /// Nanoseconds from datagram to callback of the latest run.
    std::vector<double> Latencies() const;

    /// Sends any other datagram.
    void SendOther(std::string_view datagram) const;

    /// Sends a single signature; whether it has come back within a second.
    bool SendOne();

    /// Sends a single signature to a host that does not call back.
    void SendUnanswered() { Send(); }

    /// When the latest signature was called back for, in nanoseconds of the monotonic clock.
    double ArrivalOfLatest() const;

private:
    void Send();
    Run Finish(std::uint64_t sent, std::uint64_t callBacksBefore, double seconds) const;

    HostProcess& host;
    Signature signature;
    int descriptor;
    std::uint64_t next = 0;
    std::uint64_t runStart = 0;
    std::array<std::int64_t, SharedState::SampleCount> sendTimes{};
};
} // namespace Benchmarks
