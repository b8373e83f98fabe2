#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "DiscoveryHostSerializer.h"
#include "Json/JSONObject.h"
#include "Signature.h"

#include <benchmark/benchmark.h>

namespace Benchmarks
{
namespace
{
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Zent::Discovery::DiscoveryHost;
using Zent::Discovery::DiscoveryMessage;
using Zent::Discovery::DiscoveryMessageDeserializer;
using Zent::Discovery::SignatureBroadcastMessage;
using Zent::Discovery::Server::DiscoveryHostSerializer;
using Zent::Utils::Json::JSONObject;

/// From the parsed tree to the records of a host.
void Read(benchmark::State& state)
{
    const JSONObject json(String{Signature().Text()});
    for (auto _ : state)
    {
        DiscoveryHost host;
        host.ReadFrom(json.GetJSONObject("Host"));
        benchmark::DoNotOptimize(host);
    }
}

/// From the datagram's text to the message, parse included.
void Deserialize(benchmark::State& state)
{
    const String text{Signature().Text()};
    const DiscoveryMessageDeserializer deserializer;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(deserializer.Deserialize(text));
    }
}

SmartPointer<SignatureBroadcastMessage> MessageOf(const Signature& signature)
{
    return DiscoveryMessageDeserializer().Deserialize(String{signature.Text()}).As<SignatureBroadcastMessage>();
}

void Document(benchmark::State& state)
{
    const auto message = MessageOf(Signature());
    const DiscoveryHostSerializer serializer;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(serializer.Serialize(*message->Host, message->SourceNIC));
    }
}

/// All that is done for a signature between its arrival and the callback, but for queues and log.
void TextToDocument(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const String text{Signature(count, count).Text()};
    const DiscoveryMessageDeserializer deserializer;
    const DiscoveryHostSerializer serializer;
    for (auto _ : state)
    {
        const auto message = deserializer.Deserialize(text).As<SignatureBroadcastMessage>();
        benchmark::DoNotOptimize(serializer.Serialize(*message->Host, message->SourceNIC));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(Read)->Name("records/read");
BENCHMARK(Deserialize)->Name("records/text to message");
BENCHMARK(Document)->Name("document/write");
BENCHMARK(TextToDocument)
    ->Name("document/from text, by NICs and products")
    ->DenseRange(2, 2)
    ->DenseRange(16, 128, 16)
    ->Complexity(benchmark::oN);
} // namespace
} // namespace Benchmarks
