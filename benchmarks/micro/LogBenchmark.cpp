#include "support/TemporaryFolder.h"
#include "system/LogStreams/LogStream.h"
#include "system/LogStreams/LogStreamChannel.h"

#include <benchmark/benchmark.h>

namespace Benchmarks
{
namespace
{
using Nfx::System::String;
using Nfx::System::LogStreams::LogStream;
using Nfx::System::LogStreams::LogStreamChannel;
using Nfx::System::LogStreams::LogStreamLevel;

/// One line, written to a file.
void Line(benchmark::State& state)
{
    const Tests::TemporaryFolder folder;
    LogStream stream(folder.PathOf("line.log").c_str(), LogStreamLevel::Standard, {});
    stream.SetFileCount(1); // splits, so that the disk does not fill
    const LogStreamChannel channel("ServerTaskProcessor");
    const String message("Notifying receipt of Client Signature. Client's host name : device-0000000001");
    for (auto _ : state)
    {
        stream.Write(channel, message, LogStreamLevel::Standard);
    }
}

/// A line of a level that is off.
void LineOff(benchmark::State& state)
{
    const Tests::TemporaryFolder folder;
    LogStream stream(folder.PathOf("off.log").c_str(), LogStreamLevel::Critical, {});
    const LogStreamChannel channel("ServerTaskProcessor");
    const String message("Notifying receipt of Client Signature. Client's host name : device-0000000001");
    for (auto _ : state)
    {
        stream.Write(channel, message, LogStreamLevel::Standard);
    }
}

BENCHMARK(Line)->Name("log/line");
BENCHMARK(LineOff)->Name("log/line of a level that is off");
} // namespace
} // namespace Benchmarks
