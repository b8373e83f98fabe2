#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"
#include "Signature.h"

#include <benchmark/benchmark.h>

namespace Benchmarks
{
namespace
{
using Nfx::System::String;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

void Parse(benchmark::State& state)
{
    const String text{Signature().Text()};
    for (auto _ : state)
    {
        const JSONObject json(text);
        benchmark::DoNotOptimize(json);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.Length()));
}

void ParseWithEscape(benchmark::State& state)
{
    std::string text = Signature().Text();
    text.replace(text.find("Controller"), 1, "\\n");
    const String escaped{std::string_view(text)};
    for (auto _ : state)
    {
        const JSONObject json(escaped);
        benchmark::DoNotOptimize(json);
    }
}

void Write(benchmark::State& state)
{
    for (auto _ : state)
    {
        JSONStringer stringer;
        stringer.Object();
        for (int member = 0; member < 40; ++member)
        {
            stringer.Key("FriendlyName");
            stringer.Value("255.255.255.0");
        }
        stringer.EndObject();
        benchmark::DoNotOptimize(stringer.Detach());
    }
}

BENCHMARK(Parse)->Name("json/parse");
BENCHMARK(ParseWithEscape)->Name("json/parse with an escape");
BENCHMARK(Write)->Name("json/write 40 members");
} // namespace
} // namespace Benchmarks
