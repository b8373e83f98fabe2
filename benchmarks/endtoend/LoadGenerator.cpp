#include "endtoend/LoadGenerator.h"

#include "endtoend/Clock.h"

#include <algorithm>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
constexpr std::int64_t Second = 1'000'000'000;
constexpr std::int64_t ShortestNap = 20'000;  // below it the clock costs more than it gives
constexpr std::int64_t Patience = 50'000'000; // without a callback what is on its way counts as lost
constexpr std::int64_t MostBehind = 8;        // datagrams that a held up sender sends at once

void SleepUntil(std::int64_t time)
{
    const timespec until = {static_cast<std::time_t>(time / Second), static_cast<long>(time % Second)};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
}
} // namespace

LoadGenerator::LoadGenerator(HostProcess& host, const Signature& signature)
    : host(host)
    , signature(signature)
    , descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    server.sin_port = htons(12001);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&server), sizeof server) != 0)
    {
        throw std::runtime_error("no socket to send from");
    }
    prctl(PR_SET_TIMERSLACK, 1UL); // naps end when they should
    WarmUp();
}

LoadGenerator::~LoadGenerator()
{
    close(descriptor);
}

void LoadGenerator::WarmUp()
{
    for (int attempt = 0; attempt < 10 && !SendOne(); ++attempt)
    {
        // Each datagram that is too large is lost and doubles the receive buffer.
    }
    InWindow(500, 4);
}

Run LoadGenerator::InWindow(std::uint64_t count, std::uint64_t window)
{
    const std::uint64_t before = host.CallBacks();
    std::uint64_t lost = 0;
    std::uint64_t seen = before;
    const std::int64_t start = Now();
    std::int64_t lastChange = start;
    runStart = next;
    for (std::uint64_t sent = 0; sent < count;)
    {
        const std::uint64_t current = host.CallBacks();
        const std::int64_t now = Now();
        lastChange = current == seen ? lastChange : now;
        seen = current;
        if (now - lastChange > Patience)
        {
            lost = sent - (seen - before);
            lastChange = now;
        }
        if (sent - lost - (seen - before) >= window)
        {
            SleepUntil(now + ShortestNap);
            continue;
        }
        for (std::uint64_t room = window - (sent - lost - (seen - before)); room > 0 && sent < count; --room, ++sent)
        {
            Send();
        }
    }
    while (host.CallBacks() - before + lost < count && Now() - lastChange < Patience)
    {
        SleepUntil(Now() + ShortestNap);
        lastChange = host.CallBacks() == seen ? lastChange : Now();
        seen = host.CallBacks();
    }
    return Finish(count, before, static_cast<double>(Now() - start) / 1e9);
}

Run LoadGenerator::AtRate(std::uint64_t count, double rate)
{
    const std::uint64_t before = host.CallBacks();
    const double interval = 1e9 / rate;
    const std::int64_t start = Now();
    double due = static_cast<double>(start);
    runStart = next;
    for (std::uint64_t sent = 0; sent < count; ++sent, due += interval)
    {
        const std::int64_t now = Now();
        if (static_cast<std::int64_t>(due) - now > 0)
        {
            SleepUntil(std::max(static_cast<std::int64_t>(due), now + ShortestNap));
        }
        due = std::max(due, static_cast<double>(now) - static_cast<double>(MostBehind) * interval);
        Send();
    }
    return Finish(count, before, static_cast<double>(Now() - start) / 1e9);
}

Run LoadGenerator::InBursts(std::uint64_t bursts, std::uint64_t size, std::int64_t interval)
{
    const std::uint64_t before = host.CallBacks();
    const std::int64_t start = Now();
    runStart = next;
    for (std::uint64_t burst = 0; burst < bursts; ++burst)
    {
        SleepUntil(start + static_cast<std::int64_t>(burst) * interval);
        for (std::uint64_t index = 0; index < size; ++index)
        {
            Send();
        }
    }
    return Finish(bursts * size, before, static_cast<double>(Now() - start) / 1e9);
}

Run LoadGenerator::ByCable(std::uint64_t count, double rate)
{
    const std::uint64_t before = host.CallBacks();
    const std::int64_t start = Now();
    runStart = next;
    for (std::uint64_t sent = 0; sent < count; ++sent)
    {
        const std::int64_t due = start + static_cast<std::int64_t>(static_cast<double>(sent) * 1e9 / rate);
        while (Now() < due)
        {
        }
        Send();
    }
    return Finish(count, before, static_cast<double>(Now() - start) / 1e9);
}

std::vector<double> LoadGenerator::Latencies() const
{
    std::vector<double> latencies;
    for (std::uint64_t number = runStart; number < next; ++number)
    {
        const std::size_t sample = number % SharedState::SampleCount;
        const std::int64_t arrival = host.State().CallBackTimes[sample].load(std::memory_order_relaxed);
        if (arrival >= sendTimes[sample])
        {
            latencies.push_back(static_cast<double>(arrival - sendTimes[sample]));
        }
    }
    return latencies;
}

void LoadGenerator::SendOther(std::string_view datagram) const
{
    send(descriptor, datagram.data(), datagram.size(), 0);
}

bool LoadGenerator::SendOne()
{
    const std::uint64_t before = host.CallBacks();
    runStart = next;
    Send();
    host.AwaitQuiet(before + 1);
    return host.CallBacks() > before;
}

double LoadGenerator::ArrivalOfLatest() const
{
    const std::size_t sample = (next - 1) % SharedState::SampleCount;
    return static_cast<double>(host.State().CallBackTimes[sample].load(std::memory_order_relaxed));
}

void LoadGenerator::Send()
{
    const std::string_view datagram = signature.Numbered(next);
    sendTimes[next % SharedState::SampleCount] = Now();
    ++next;
    send(descriptor, datagram.data(), datagram.size(), 0);
}

Run LoadGenerator::Finish(std::uint64_t sent, std::uint64_t callBacksBefore, double seconds) const
{
    host.AwaitQuiet(callBacksBefore + sent);
    return {sent, host.CallBacks() - callBacksBefore, seconds};
}
} // namespace Benchmarks
