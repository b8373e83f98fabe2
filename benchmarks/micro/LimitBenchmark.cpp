#include "Signature.h"
#include "endtoend/Limit.h"

#include <benchmark/benchmark.h>

namespace Benchmarks
{
namespace
{
/// What the limit program does for a signature but for receiving it.
void Handle(benchmark::State& state)
{
    const Signature signature;
    Limit limit([](const char* document) { benchmark::DoNotOptimize(document); }, nullptr);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(limit.Handle(signature.Text()));
    }
}

BENCHMARK(Handle)->Name("limit/text to document");
} // namespace
} // namespace Benchmarks
