#include "endtoend/Round.h"

#include "endtoend/Clock.h"
#include "endtoend/DevicePort.h"
#include "endtoend/LargeDatagrams.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
constexpr std::uint64_t Window = 40;
constexpr double Messages = 100'000; // that CPU time is given for
constexpr std::int64_t Millisecond = 1'000'000;

double CpuPerMessages(std::int64_t nanoseconds, std::uint64_t callBacks)
{
    return callBacks == 0 ? 0 : static_cast<double>(nanoseconds) / 1e9 * Messages / static_cast<double>(callBacks);
}

std::uint64_t CountFor(double rate, double seconds)
{
    return static_cast<std::uint64_t>(std::max(rate * seconds, 10.0));
}
} // namespace

Round::Round(const Contender& contender, Level level, const Scale& scale, const std::string& folder, Values& values)
    : contender(contender)
    , level(level)
    , scale(scale)
    , folder(folder)
    , values(values)
{
}

void Round::Measure()
{
    MeasureThroughput();
    MeasureBursts();
    MeasureCable("cable_rights", Rights::Given);
    MeasureCable("cable_plain", Rights::Taken);
    MeasureLatency();
    MeasureDiscover();
    if (!contender.Library.empty()) // the limit program has no server to start, nor defences, and keeps nothing
    {
        MeasureMemory();
        MeasureCycles();
        MeasureLargeDatagrams();
    }
}

void Round::MeasureThroughput()
{
    HostProcess host(contender, level, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    const std::int64_t before = host.CpuTime();
    const Run run = generator->InWindow(scale.WindowCount, Window);
    Note("cpu_window", CpuPerMessages(host.CpuTime() - before, run.CallBacks));
    Note("window_rate", static_cast<double>(run.CallBacks) / run.Seconds);
    Note("even_rate", HighestEvenRate(*generator, run.Rate()));
}

double Round::HighestEvenRate(LoadGenerator& generator, double estimate) const
{
    constexpr int Steps = 7;
    double lowest = 0.1 * estimate;
    double highest = 1.5 * estimate;
    double achieved = 0;
    for (int step = 0; step < Steps; ++step)
    {
        const double rate = (lowest + highest) / 2;
        Run run;
        for (int attempt = 0; attempt < 2 && !(run.Sent > 0 && run.IsComplete()); ++attempt)
        {
            run = generator.AtRate(CountFor(rate, scale.RateSeconds), rate); // others may disturb one attempt
        }
        (run.IsComplete() ? lowest : highest) = rate;
        achieved = run.IsComplete() ? std::max(achieved, run.Rate()) : achieved;
    }
    return achieved;
}

void Round::MeasureBursts()
{
    HostProcess host(contender, level, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    std::vector<double> callBacks;
    for (int burst = 0; burst < scale.BurstCount; ++burst)
    {
        callBacks.push_back(static_cast<double>(generator->InBursts(1, 10'000, 0).CallBacks));
    }
    Note("burst_10000", Median(callBacks));
    Note("bursts_10x1000", static_cast<double>(generator->InBursts(10, 1'000, 100 * Millisecond).CallBacks));
    Note("bursts_100x100", static_cast<double>(generator->InBursts(100, 100, 10 * Millisecond).CallBacks));
}

void Round::MeasureCable(const char* figure, Rights rights)
{
    constexpr double Rate = 106'000; // datagrams of the signature's size that 1 Gbit/s carries
    HostProcess host(contender, level, folder, rights);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    std::vector<double> callBacks;
    for (int burst = 0; burst < scale.CableCount; ++burst)
    {
        callBacks.push_back(static_cast<double>(generator->ByCable(1'000, Rate).CallBacks));
    }
    Note(figure, Median(callBacks));
}

void Round::MeasureLatency()
{
    HostProcess host(contender, level, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    for (const double rate : {100.0, 5000.0})
    {
        generator->AtRate(CountFor(rate, scale.LatencySeconds), rate);
        const std::string name = "latency_" + std::to_string(static_cast<int>(rate));
        Note(name + "_p50", Percentile(generator->Latencies(), 50) / 1e3);
        Note(name + "_p99", Percentile(generator->Latencies(), 99) / 1e3);
    }
    for (const double rate : {1'000.0, 10'000.0})
    {
        const std::int64_t before = host.CpuTime();
        const Run run = generator->AtRate(CountFor(rate, scale.LatencySeconds), rate);
        Note("cpu_" + std::to_string(static_cast<int>(rate)), CpuPerMessages(host.CpuTime() - before, run.CallBacks));
    }
}

void Round::MeasureDiscover()
{
    HostProcess host(contender, level, folder);
    const DevicePort port;
    std::vector<double> wire;
    std::vector<double> call;
    for (std::uint64_t number = 0; number < scale.DiscoverCount; ++number)
    {
        usleep(3000); // so that everything sleeps, as it does when a person presses a button
        host.Discover();
        const std::int64_t arrival = port.NextArrival();
        wire.push_back(static_cast<double>(arrival - host.State().DiscoverStart) / 1e3);
        call.push_back(static_cast<double>(host.State().DiscoverDuration) / 1e3);
    }
    Note("discover_wire_p50", Percentile(wire, 50));
    Note("discover_wire_p99", Percentile(wire, 99));
    Note("discover_call", Percentile(call, 50));
}

void Round::MeasureMemory()
{
    HostProcess host(contender, level, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    generator->InWindow(scale.MemoryFrom, Window);
    const std::int64_t before = host.Resident();
    generator->InWindow(scale.MemoryTo - scale.MemoryFrom, Window);
    Note("memory_growth", static_cast<double>(host.Resident() - before) / 1024);
    Note("memory_peak", static_cast<double>(host.PeakResident()) / 1024);
}

void Round::MeasureCycles()
{
    HostProcess host(contender, level, folder);
    host.Cycle();
    std::vector<double> durations;
    for (const std::atomic<std::int64_t>& duration : host.State().Cycles)
    {
        durations.push_back(static_cast<double>(duration) / 1e3);
    }
    Note("start_stop", Median(durations));
}

void Round::MeasureLargeDatagrams()
{
    HostProcess host(contender, level, folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    const auto filler = std::make_unique<LoadGenerator>(host, LargeDatagrams::Valid());
    double slowest = 0;
    for (const LargeDatagrams::Content& content : LargeDatagrams::All())
    {
        const std::int64_t start = Now();
        filler->SendOther(content.Text);
        const bool answered = generator->SendOne(); // handled after the large one
        slowest = std::max(slowest, answered ? generator->ArrivalOfLatest() - static_cast<double>(start) : 1e9);
    }
    Note("datagram_64k", slowest / 1e6);
}
} // namespace Benchmarks
