#include "Inventory/DeviceDifferences.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Inventory/Session.h"
#include "Show/LiveWatchView.h"
#include "Show/Output.h"
#include "Signature.h"
#include "Terminal/Terminal.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

// For all devices of a network together: ten times as many must take ten times as long and no more.

namespace Benchmarks
{
namespace
{
namespace Console = Zent::Discovery::Console;
using namespace Zent::Discovery::Inventory;
using namespace std::chrono_literals;

void Replace(std::string& text, const std::string& what, const std::string& with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    {
        text.replace(at, what.size(), with);
    }
}

/// What the callbacks give of so many devices, each with a name and addresses of its own; firstName numbers the names.
std::vector<DeviceMessage> Messages(std::int64_t count, std::uint64_t firstName = 0)
{
    std::vector<DeviceMessage> messages;
    Signature signature;
    for (std::int64_t i = 0; i < count; ++i)
    {
        const std::string_view datagram = signature.Numbered(firstName + static_cast<std::uint64_t>(i));
        std::string document = "{" + std::string(datagram.substr(datagram.find("\"Host\"")));
        char number[16];
        std::snprintf(number, sizeof(number), "%02X:%02X", static_cast<unsigned>(i >> 8 & 255),
                      static_cast<unsigned>(i & 255));
        Replace(document, "02:6F:68:00:00:", "02:6F:68:" + std::string(number).substr(0, 5) + ":");
        Replace(document, "192.168.", "10." + std::to_string(i % 250) + ".");
        messages.push_back({DeviceMessage::MessageKind::Signature, std::move(document)});
    }
    return messages;
}

void FeedAll(Session& session, const std::vector<DeviceMessage>& messages, Time now)
{
    for (const DeviceMessage& message : messages)
    {
        session.Feed(message, now);
    }
    while (session.NextEvent())
    {
    }
}

/// All have been heard before, and say the same.
void Feed(benchmark::State& state)
{
    const std::vector<DeviceMessage> messages = Messages(state.range(0));
    Session session;
    Time now = 0s;
    FeedAll(session, messages, now);
    for (auto _ : state)
    {
        FeedAll(session, messages, now += 10s);
    }
    state.SetComplexityN(state.range(0));
}

/// All are heard for the first time.
void FeedNew(benchmark::State& state)
{
    const std::vector<DeviceMessage> messages = Messages(state.range(0));
    for (auto _ : state)
    {
        Session session;
        FeedAll(session, messages, 0s);
    }
    state.SetComplexityN(state.range(0));
}

/// Ten minutes in which all devices are silent: they are asked, and go.
void Advance(benchmark::State& state)
{
    const std::vector<DeviceMessage> messages = Messages(state.range(0));
    for (auto _ : state)
    {
        state.PauseTiming();
        Session session;
        FeedAll(session, messages, 0s);
        state.ResumeTiming();
        for (Time now = 0s; now < 600s; now += 20ms)
        {
            session.Advance(now);
            while (session.NextWish())
            {
            }
        }
    }
    state.SetComplexityN(state.range(0));
}

void Snapshot(benchmark::State& state)
{
    Session session;
    FeedAll(session, Messages(state.range(0)), 0s);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(session.ToJson());
    }
    state.SetComplexityN(state.range(0));
}

DeviceList ListOf(std::vector<DeviceMessage> messages)
{
    DeviceList list;
    for (DeviceMessage& message : messages)
    {
        list.Add(Device(std::move(message)));
    }
    return list;
}

/// Each device has another name than before.
void Diff(benchmark::State& state)
{
    const DeviceList before = ListOf(Messages(state.range(0)));
    const DeviceList after = ListOf(Messages(state.range(0), 50000));
    for (auto _ : state)
    {
        for (const Device& device : after.Devices())
        {
            benchmark::DoNotOptimize(DeviceDifferences::Between(*before.Find(device), device));
        }
    }
    state.SetComplexityN(state.range(0));
}

void Sort(benchmark::State& state)
{
    const DeviceList list = ListOf(Messages(state.range(0)));
    DeviceSelection selection;
    selection.AddOrder("type");
    selection.AddOrder("name:desc");
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(selection.Of(list.Devices(), {}));
    }
    state.SetComplexityN(state.range(0));
}

/// What watch does five times a second, sorted as nobody's network is by itself.
void Redraw(benchmark::State& state)
{
    Session session;
    FeedAll(session, Messages(state.range(0)), 0s);
    DeviceSelection selection;
    selection.AddOrder("type");
    selection.AddOrder("name:desc");
    std::ostringstream screen;
    std::ostringstream errors;
    const Console::Terminal terminal(Console::Terminal::Stream::Output);
    Console::Output output(screen, errors, {});
    Console::LiveWatchView view(screen, terminal, output, selection, nullptr, true, [] {});
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(view.Refresh(session.Devices()));
    }
    state.SetComplexityN(state.range(0));
}

void ByDevices(benchmark::internal::Benchmark* each)
{
    each->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

BENCHMARK(Feed)->Name("inventory/feed, by devices")->Apply(&ByDevices);
BENCHMARK(FeedNew)->Name("inventory/feed new ones, by devices")->Apply(&ByDevices);
BENCHMARK(Advance)->Name("inventory/advance through ten minutes of silence, by devices")->Apply(&ByDevices);
BENCHMARK(Snapshot)->Name("inventory/snapshot, by devices")->Apply(&ByDevices);
BENCHMARK(Diff)->Name("inventory/diff, by devices")->Apply(&ByDevices);
BENCHMARK(Sort)->Name("inventory/sort, by devices")->Apply(&ByDevices);
BENCHMARK(Redraw)->Name("console/redraw watch, by devices")->Apply(&ByDevices);
} // namespace
} // namespace Benchmarks
