#include "CommandLine.h"

#include <CLI/CLI.hpp>

namespace Zent::Discovery::Simulator
{
namespace
{
void AddDevices(CLI::App& app, SimulationOptions& options)
{
    app.add_option("--count", options.Count, "how many devices")->capture_default_str()->check(CLI::Range(1, 2000));
    app.add_option("--seed", options.Seed, "the same seed gives the same devices")->capture_default_str();
    app.add_option("--address", options.Addresses, "the address of a device; may be repeated, for the first devices")
        ->type_name("IP")
        ->allow_extra_args(false);
    app.add_option("--network", options.Network, "the other devices' addresses: the first one, and the prefix length")
        ->type_name("IP/LENGTH")
        ->capture_default_str();
}

void AddBehaviour(CLI::App& app, SimulationOptions& options)
{
    app.add_option("--protocol-version", options.ProtocolVersion, "the version that the messages bear")
        ->type_name("VERSION");
    app.add_option_function<unsigned>(
           "--delay", [&options](unsigned milliseconds) { options.Delay = std::chrono::milliseconds(milliseconds); },
           "the time from a request to its answer")
        ->type_name("MILLISECONDS")
        ->check(CLI::Range(0, 600000).description(""));
    app.add_flag("--silent{false}", options.Answers, "answer nothing");
    app.add_flag("--no-hello{false}", options.SaysHello, "start without a Hello");
    app.add_flag("--no-bye{false}", options.SaysBye, "end without a Bye");
    app.add_flag("--no-source-nic{false}", options.NamesSourceNIC, "leave the source interface out of the messages");
    app.add_flag("--read-only-names", options.HostNamesAreReadOnly, "refuse new host names");
}
} // namespace

std::optional<SimulationOptions> CommandLine::Parse(const std::vector<std::string>& arguments,
                                                    std::ostream& out,
                                                    std::ostream& errors,
                                                    int& status)
{
    CLI::App app("Simulates devices: answers requests on UDP port 12000 until it is interrupted.", "device-simulator");
    app.allow_windows_style_options(false);
    app.failure_message(CLI::FailureMessage::simple);
    SimulationOptions options;
    AddDevices(app, options);
    AddBehaviour(app, options);
    app.add_flag("--until-eof", options.EndsWithInput, "end when standard input ends, too");
    app.add_flag("--verbose", options.Talks, "print what the devices do");
    try
    {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return options;
    }
    catch (const CLI::ParseError& error)
    {
        status = app.exit(error, out, errors) == 0 ? 0 : 2;
        return std::nullopt;
    }
}
} // namespace Zent::Discovery::Simulator
