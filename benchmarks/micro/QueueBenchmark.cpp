#include "Discovery/DiscoveryMessageParser.h"
#include "Signature.h"
#include "system/Threading/Semaphore.h"

#include <benchmark/benchmark.h>

namespace Benchmarks
{
namespace
{
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Threading::Semaphore;
using Zent::Discovery::Datagram;
using Zent::Discovery::DiscoveryMessageParser;

/// Takes datagrams, does nothing with them and says when a number of them is through.
class Counter final : public DiscoveryMessageParser
{
public:
    explicit Counter(std::int64_t batch)
        : DiscoveryMessageParser("Counter")
        , batch(batch)
    {
        Start();
    }

    ~Counter() override { Stop(); }

    void Await() { done.WaitOne(); }

protected:
    void ProcessDatagram(const SmartPointer<Datagram>&) override
    {
        if (++count == batch)
        {
            count = 0;
            done.Release();
        }
    }

private:
    const std::int64_t batch;
    std::int64_t count = 0; // used by the parser's thread alone
    Semaphore done{0, 1};
};

/// From one thread to another and on: single datagrams wake the other thread each time, many at once seldom.
void HandOver(benchmark::State& state)
{
    Counter counter(state.range(0));
    const SmartPointer<String> text(new String(std::string_view(Signature().Text())));
    const IPEndPoint sender(IPAddress::Broadcast(), 12000);
    for (auto _ : state)
    {
        for (std::int64_t index = 0; index < state.range(0); ++index)
        {
            counter.Enqueue(SmartPointer<Datagram>(new Datagram(text, sender)));
        }
        counter.Await();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(HandOver)->Name("queue/hand over")->Arg(1)->Arg(40)->Arg(500)->UseRealTime();
} // namespace
} // namespace Benchmarks
