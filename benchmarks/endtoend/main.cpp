#include "endtoend/Clock.h"
#include "endtoend/Report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <sched.h>
#include <sys/utsname.h>
#include <thread>

namespace Benchmarks
{
namespace
{
struct Arguments
{
    Contender Limit;
    Contender Library;
    std::string Folder;
    Scale Plan = Scale::Short();
    bool IsQuick = false;
    bool IsLoad = false;
};

void Progress(const char* what)
{
    std::fprintf(stderr, "bench: %s\n", what);
}

std::string Machine()
{
    std::string processor = "unknown processor";
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);)
    {
        if (line.starts_with("model name"))
        {
            processor = line.substr(line.find(':') + 2);
            break;
        }
    }
    utsname system{};
    uname(&system);
    std::string load;
    std::ifstream("/proc/loadavg") >> load;
    return std::to_string(std::thread::hardware_concurrency()) + " x " + processor + ", " + system.sysname + " " +
           system.release + ", load " + load + " at the start";
}

void MeasureRound(const Arguments& arguments, int round, Report& report)
{
    for (const Level level : {Level::None, Level::Standard})
    {
        const std::size_t index = level == Level::None ? 0 : 1;
        // Both orders, so that neither contender always meets the other's leftovers.
        for (const bool isLimit : {round % 2 == 0, round % 2 != 0})
        {
            Values& values = isLimit ? report.Limit[index] : report.Library[index];
            const Contender& contender = isLimit ? arguments.Limit : arguments.Library;
            Round(contender, level, arguments.Plan, arguments.Folder, values).Measure();
        }
    }
}

/// Something to do for a library that is looked at while it works, however slow that makes it.
void Load(const Arguments& arguments)
{
    constexpr std::uint64_t Count = 5'000;
    HostProcess host(arguments.Library, Level::Standard, arguments.Folder);
    const auto generator = std::make_unique<LoadGenerator>(host, Signature());
    generator->InWindow(Count, 20);
    std::printf("%llu\n", static_cast<unsigned long long>(host.CallBacks()));
}

void Bench(const Arguments& arguments)
{
    const std::int64_t start = Now();
    std::printf("%s\n\n", Machine().c_str());
    Report report;
    for (int round = 0; round < arguments.Plan.Rounds; ++round)
    {
        Progress(("round " + std::to_string(round + 1) + " of " + std::to_string(arguments.Plan.Rounds)).c_str());
        MeasureRound(arguments, round, report);
    }
    Progress("cost as work grows");
    report.Costs.Measure(arguments.Library, arguments.Folder, arguments.IsQuick);
    report.Seconds = static_cast<double>(Now() - start) / 1e9;
    for (const Level level : {Level::None, Level::Standard})
    {
        std::fputs(report.Table(level, arguments.Plan).c_str(), stdout);
    }
    std::ofstream(arguments.Folder + "/endtoend.json") << report.Json();
}
} // namespace
} // namespace Benchmarks

int main(int argc, char** argv)
{
    using namespace Benchmarks;
    if (argc < 5)
    {
        std::fprintf(stderr, "usage: endtoend-bench LIMIT-HOST LIBRARY-HOST LIBRARY FOLDER [--quick|--full|--load]\n");
        return EXIT_FAILURE;
    }
    Arguments arguments{{argv[1], ""}, {argv[2], argv[3]}, argv[4]};
    const char* const extent = argc > 5 ? argv[5] : "";
    arguments.IsQuick = std::strcmp(extent, "--quick") == 0;
    arguments.IsLoad = std::strcmp(extent, "--load") == 0;
    if (arguments.IsQuick)
    {
        arguments.Plan = Scale::Quick();
    }
    else if (std::strcmp(extent, "--full") == 0)
    {
        arguments.Plan = Scale::Full();
    }
    try
    {
        arguments.IsLoad ? Load(arguments) : Bench(arguments);
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "bench: %s\n", failure.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
