#include "CommandLine.h"

#include "AddressPlan.h"
#include "Programs/ProgramVersion.h"
#include "system/Exception.h"
#include "system/Version.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace Zent::Discovery::Simulator
{
namespace
{
/// Makes a validator of a reader that throws what is malformed.
template <class TRead>
auto Readable(const char* kind, TRead read)
{
    return [kind, read](const std::string& text) -> std::string {
        try
        {
            read(text);
            return "";
        }
        catch (const Nfx::System::Exception&)
        {
            return '"' + text + "\" is not " + kind;
        }
    };
}

/// Not the parser's own reading of numbers, which takes -1 for the largest one.
template <class TNumber>
void AddNumber(
    CLI::App& app, const std::string& option, TNumber& number, TNumber least, TNumber greatest, const std::string& help)
{
    const auto take = [=, &number](const std::string& text) {
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end || number < least || number > greatest)
        {
            throw CLI::ValidationError(option, '"' + text + "\" is not a number from " + std::to_string(least) +
                                                   " to " + std::to_string(greatest));
        }
    };
    app.add_option_function<std::string>(option, take, help)->type_name("NUMBER")->default_str(std::to_string(number));
}

void AddAddresses(CLI::App& app,
                  const std::string& option,
                  std::vector<std::string>& addresses,
                  const std::string& help)
{
    app.add_option(option, addresses, help)
        ->type_name("IP")
        ->allow_extra_args(false)
        ->check(Readable("an IP address", [](const std::string& text) {
            Nfx::System::Net::IPAddress::Parse(Nfx::System::String(std::string_view(text)));
        }));
}

void AddDevices(CLI::App& app, SimulationOptions& options)
{
    AddNumber(app, "--count", options.Count, 1, 2000, "how many devices");
    AddNumber(app, "--seed", options.Seed, std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max(),
              "the same seed gives the same devices");
    AddAddresses(app, "--address", options.Addresses,
                 "the address of a device; may be repeated, for the first devices");
    app.add_option("--network", options.Network, "the other devices' addresses: the first one, and the prefix length")
        ->type_name("IP/LENGTH")
        ->check(Readable("an IP address with a prefix length from 1 to 32, such as 127.0.0.10/8",
                         [](const std::string& text) { AddressPlan({}, text); }))
        ->capture_default_str();
}

void AddBehaviour(CLI::App& app, Behaviour& behaviour)
{
    for (const Behaviour::Setting& setting : Behaviour::Settings())
    {
        const std::string option = std::string("--") + setting.Name;
        const auto take = [&behaviour, &setting, option](const std::string& value) {
            try
            {
                setting.Take(behaviour, value.empty() && setting.Alone != nullptr ? setting.Alone : value);
            }
            catch (const std::invalid_argument& error)
            {
                throw CLI::ValidationError(option, error.what());
            }
        };
        if (*setting.Unit == '\0')
        {
            app.add_flag_callback(
                option, [take] { take(""); }, setting.Help);
        }
        else
        {
            app.add_option_function<std::string>(option, take, setting.Help)
                ->type_name(setting.Unit)
                ->expected(setting.Alone != nullptr ? 0 : 1, 1);
        }
    }
}

void AddMessages(CLI::App& app, SimulationOptions& options)
{
    app.add_option("--protocol-version", options.ProtocolVersion, "the version that the messages bear")
        ->type_name("VERSION")
        ->check(Readable("a version such as 1.0.18", [](const std::string& text) {
            Nfx::System::Version::Parse(Nfx::System::String(std::string_view(text)));
        }));
    app.add_flag_callback(
        "--no-hello", [&options] { options.SaysHello = false; }, "start without a Hello");
    app.add_flag_callback(
        "--no-bye", [&options] { options.SaysBye = false; }, "end without a Bye");
    app.add_flag_callback(
        "--no-source-nic", [&options] { options.NamesSourceNIC = false; },
        "leave the source interface out of the messages");
    app.add_flag("--read-only-names", options.HostNamesAreReadOnly, "refuse new host names");
}

void AddRecordings(CLI::App& app, ProgramOptions& options)
{
    CLI::Option& replay = *app.add_option("--replay", options.Simulation.ReplayPath,
                                          "play the devices of a recording instead of invented ones")
                               ->type_name("FILE")
                               ->excludes("--count");
    app.add_option("--record", options.Recording.Path,
                   "play no devices: ask those of the network, and keep what they say in a file until interrupted")
        ->type_name("FILE")
        ->excludes(&replay);
    AddAddresses(app, "--from", options.Recording.Addresses,
                 "this machine's address to record from; may be repeated; those of its usual interfaces without it");
}
} // namespace

std::optional<ProgramOptions> CommandLine::Parse(const std::vector<std::string>& arguments,
                                                 std::ostream& out,
                                                 std::ostream& errors,
                                                 int& status)
{
    CLI::App app("Simulates devices: answers requests on UDP port 12000 until it is interrupted.", "device-simulator");
    app.footer("Lines on standard input change how the devices behave: \"loss 5%\", \"silent off\", \"kill 17\", "
               "\"revive 17\".");
    app.allow_windows_style_options(false);
    app.failure_message(CLI::FailureMessage::simple);
    app.set_version_flag("--version", std::string("device-simulator ") + Programs::ProgramVersion);
    ProgramOptions options;
    AddDevices(app, options.Simulation);
    AddMessages(app, options.Simulation);
    AddBehaviour(app, options.Simulation.AtStart);
    AddRecordings(app, options);
    app.add_flag("--until-eof", options.EndsWithInput, "end when standard input ends, too");
    app.add_flag("--share-port", options.Simulation.SharesPort,
                 "share the port with other programs, of which one gets what is sent to a single address");
    app.add_flag("--verbose", options.Simulation.Talks, "print what the devices do");
    app.add_option("--trace", options.Simulation.TracePath,
                   "write what they do to a file, without clock times: the same for the same seed and requests")
        ->type_name("FILE");
    try
    {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        options.Recording.SharesPort = options.Simulation.SharesPort;
        return options;
    }
    catch (const CLI::ParseError& error)
    {
        const bool isHelp = error.get_exit_code() == 0;
        if (!isHelp)
        {
            errors << "device-simulator: ";
        }
        app.exit(error, out, errors);
        status = isHelp ? 0 : 2;
        return std::nullopt;
    }
}
} // namespace Zent::Discovery::Simulator
