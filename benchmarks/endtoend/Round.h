#pragma once

#include "endtoend/Figure.h"
#include "endtoend/HostProcess.h"
#include "endtoend/LoadGenerator.h"

#include <cstdint>
#include <string>

namespace Benchmarks
{
/// How much of everything; the rest of the plan is the same for a glance and for the closing table.
struct Scale
{
    int Rounds;
    std::uint64_t WindowCount;   // datagrams
    std::uint64_t MemoryFrom;    // datagrams before memory is looked at for the first time
    std::uint64_t MemoryTo;      // and for the last
    double RateSeconds;          // of each try of a rate
    double LatencySeconds;       // of each rate
    std::uint64_t DiscoverCount; // calls
    int BurstCount;              // bursts of 10,000
    int CableCount;              // bursts of 1000 by a cable

    static Scale Quick() { return {1, 2'000, 1'000, 3'000, 0.05, 0.2, 20, 1, 1}; }

    static Scale Short() { return {3, 40'000, 10'000, 110'000, 0.4, 2, 200, 3, 15}; }

    static Scale Full() { return {5, 100'000, 10'000, 1'000'000, 0.8, 4, 500, 5, 25}; }
};

/// Measures all figures of one contender at one level once.
class Round final
{
public:
    Round(const Contender& contender, Level level, const Scale& scale, const std::string& folder, Values& values);

    void Measure();

private:
    void MeasureThroughput();
    void MeasureBursts();
    void MeasureCable(const char* figure, Rights rights);
    void MeasureLatency();
    void MeasureDiscover();
    void MeasureMemory();
    void MeasureCycles();
    void MeasureLargeDatagrams();

    double HighestEvenRate(LoadGenerator& generator, double estimate) const;

    void Note(const std::string& figure, double value) { values[figure].push_back(value); }

    const Contender contender;
    const Level level;
    const Scale scale;
    const std::string folder;
    Values& values;
};
} // namespace Benchmarks
