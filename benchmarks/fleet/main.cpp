#include "Log.h"
#include "SimulatedSite.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <list>
#include <string>

using Benchmarks::SimulatedSite;
using Zent::Discovery::Agent::Log;

namespace
{
/// The broker's library waits with select, which knows no file descriptor above 1023, and takes three of them for each
/// connection.
constexpr int MaximumSites = 250;

struct Options
{
    std::uint16_t First = 1;
    std::uint16_t Count = 1;
    std::uint16_t Devices = 100;
    Zent::Discovery::Broker::BrokerSettings Broker;

    void AddTo(CLI::App& program)
    {
        program.add_option("--first", First, "the number of the first site");
        program.add_option("--count", Count, "of sites")->check(CLI::Range(1, MaximumSites));
        program.add_option("--devices", Devices, "of each site");
        program.add_option("--port", Broker.Port, "of the broker");
        program.add_option("--authority", Broker.AuthorityFile, "of the broker's certificate, for TLS");
        program.add_option_function<std::int64_t>(
            "--longest-retry", [this](std::int64_t value) { Broker.LongestRetry = std::chrono::milliseconds(value); },
            "milliseconds from one attempt to connect to the next");
    }
};

double Seconds(SimulatedSite::Clock::time_point time)
{
    return std::chrono::duration<double>(time.time_since_epoch()).count();
}

/// A line of JSON; the times are those of the system's steady clock.
void Report(const std::list<SimulatedSite>& sites)
{
    std::size_t connected = 0;
    std::size_t whole = 0;
    std::size_t failed = 0;
    SimulatedSite::Clock::time_point connectedAt{};
    SimulatedSite::Clock::time_point wholeAt{};
    for (const SimulatedSite& site : sites)
    {
        const SimulatedSite::SiteProgress progress = site.Progress();
        connected += progress.IsConnected ? 1 : 0;
        whole += progress.IsWhole ? 1 : 0;
        failed += progress.FailedAttempts;
        connectedAt = std::max(connectedAt, progress.ConnectedAt);
        wholeAt = std::max(wholeAt, progress.WholeAt);
    }
    std::cout << R"({"Connected":)" << connected << R"(,"Whole":)" << whole << R"(,"FailedAttempts":)" << failed
              << R"(,"ConnectedAt":)" << std::fixed << Seconds(connectedAt) << R"(,"WholeAt":)" << Seconds(wholeAt)
              << "}" << std::endl;
}

void Serve(const Options& options)
{
    Log log(std::cerr, Log::LogLevel::Error, false);
    std::list<SimulatedSite> sites;
    for (int site = 0; site < options.Count; ++site)
    {
        sites.emplace_back(static_cast<std::uint16_t>(options.First + site), options.Devices, options.Broker, log);
    }
    for (std::string line; std::getline(std::cin, line);)
    {
        if (line == "report")
        {
            Report(sites);
        }
        else
        {
            std::ranges::for_each(sites, line == "change" ? &SimulatedSite::ChangeOne : &SimulatedSite::Repeat);
        }
    }
    std::ranges::for_each(sites, &SimulatedSite::Stop);
}
} // namespace

/// Agents of many sites in one process. Lines of input: "report", "change" (a device of each site), "repeat" (all
/// devices say the same again); the end of the input is theirs.
int main(int argc, char* argv[])
{
    CLI::App program("Agents of many sites with devices that are made up.", "fleet-agents");
    Options options;
    options.AddTo(program);
    CLI11_PARSE(program, argc, argv);
    options.Broker.Host = "127.0.0.1";
    options.Broker.UsesTls = !options.Broker.AuthorityFile.empty();
    try
    {
        Serve(options);
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cerr << "fleet-agents: " << error.what() << '\n';
        return 1;
    }
}
