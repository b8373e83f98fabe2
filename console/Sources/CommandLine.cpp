#include "CommandLine.h"

#include "AddressText.h"
#include "DiscoveryServer.ExtC.h"
#include "HostPlatform.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <limits>
#include <map>

namespace Zent::Discovery::Console
{
namespace
{
/// Reads a result code as users meet it: 73, -1073151724, 0xC0090114.
/// Empty on success, else what is wrong.
std::string ReadErrorCode(const std::string& text, int& code)
{
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, isHexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::uint32_t>::max())
    {
        return text + " is not a result code";
    }
    code = static_cast<int>(static_cast<std::uint32_t>(value));
    return "";
}

int ReadLogLevel(const std::string& text)
{
    static const std::map<std::string, int> Levels = {{"critical", DiscoveryLogCritical},
                                                      {"standard", DiscoveryLogStandard},
                                                      {"debug", DiscoveryLogDebug},
                                                      {"none", DiscoveryLogNone}};
    const auto found = Levels.find(CLI::detail::to_lower(text));
    if (found == Levels.end())
    {
        throw CLI::ValidationError("--log-level", '"' + text + "\" is none of critical, standard, debug and none");
    }
    return found->second;
}

/// The parser bound to the options that it fills; both must stay where they are.
class Parser final
{
public:
    explicit Parser(Options& options)
        : options(options)
    {
        app.require_subcommand(1);
        app.allow_windows_style_options(false); // an argument such as /tmp/file.json is a path on every system
        app.failure_message(CLI::FailureMessage::simple);
        AddGlobalOptions();
        AddCommands();
    }

    CLI::App& App() { return app; }

private:
    void AddGlobalOptions()
    {
        options.Library = HostPlatform::DefaultLibraryPath();
        options.LogFile = HostPlatform::DefaultLogPath();
        options.LogLevel = DiscoveryLogCritical;
        app.add_option("--library", options.Library, "the library to load")->capture_default_str();
        app.add_option("--log", options.LogFile, "the log file to continue")->capture_default_str();
        app.add_option_function<std::string>(
               "--log-level", [this](const std::string& text) { options.LogLevel = ReadLogLevel(text); },
               "critical, standard, debug or none; critical without it")
            ->type_name("LEVEL");
        app.add_option("--from", options.LocalAddresses, "a local address to send broadcasts from; may be repeated")
            ->type_name("IP")
            ->allow_extra_args(false);
        app.add_option_function<std::string>(
               "--min-version", [this](const std::string& text) { options.MinimumVersion = text; },
               "drop messages of older protocol versions")
            ->type_name("VERSION");
        app.add_option_function<double>(
               "--wait",
               [this](double seconds) {
                   options.Wait = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
               },
               "how long to wait for devices; 2 seconds without it, watch without end")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.0, 86400.0).description(""))
            ->check([](const std::string& text) {
                return text.find_first_of("nN") == std::string::npos ? "" : text + " is not a time"; // nan
            });
        app.add_flag("--json", options.Json, "print one JSON document per line instead of a table");
    }

    void AddCommands()
    {
        CLI::App& discover = AddCommand("discover", "ask all devices for their signatures", CommandName::Discover);
        discover.add_option("--expect", options.ExpectedDevices, "stop waiting when so many devices have answered")
            ->type_name("COUNT")
            ->check(CLI::Range(1, 100000).description(""));

        AddCommand("watch", "show messages of devices as they come, until Ctrl-C", CommandName::Watch);

        CLI::App& refresh = AddCommand("refresh", "ask one device for its signature", CommandName::Refresh);
        refresh.add_option("MAC", options.MACAddress, "a MAC address of the device")->required()->type_name("");

        CLI::App& reach = AddCommand("reach", "ask the device at an IP address for its signature", CommandName::Reach);
        reach.add_option("IP", options.IPAddress, "the IP address of the device")->required()->type_name("");

        CLI::App& rename = AddCommand("rename", "give a device a new host name", CommandName::Rename);
        rename.add_option("NAME", options.NewHostName, "the new host name")->required()->type_name("");
        CLI::Option_group& target = *rename.add_option_group("device");
        target.add_option("--mac", options.MACAddress, "a MAC address of the device");
        target.add_option("--ip", options.IPAddress, "the IP address of the device")
            ->check([](const std::string& text) {
                // Every device that hears it would take the one name.
                return AddressText::IP(text) == "255.255.255.255" ? text + " is the address of all devices" : "";
            });
        target.require_option(1);

        CLI::App& configure =
            AddCommand("configure", "give network interfaces of devices new settings", CommandName::Configure);
        configure.add_option("FILE", options.ConfigurationFile, "a JSON array of interfaces")
            ->required()
            ->type_name("");

        CLI::App& error = AddCommand("error", "print the text of a result code", CommandName::Error);
        error
            .add_option_function<std::string>(
                "CODE",
                [this](const std::string& text) {
                    const std::string fault = ReadErrorCode(text, options.ErrorCode);
                    if (!fault.empty())
                    {
                        throw CLI::ValidationError("CODE", fault);
                    }
                },
                "such as 73 or 0xC0090114")
            ->required()
            ->type_name("");
    }

    using CommandName = Options::CommandName;

    CLI::App& AddCommand(const std::string& name, const std::string& description, CommandName command)
    {
        CLI::App& added = *app.add_subcommand(name, description);
        added.fallthrough();
        added.callback([this, command] { options.Command = command; });
        return added;
    }

    Options& options;
    CLI::App app{"Finds devices on the local networks and talks with them.", "discovery-console"};
};
} // namespace

std::optional<Options> CommandLine::Parse(const std::vector<std::string>& arguments,
                                          std::ostream& out,
                                          std::ostream& errors,
                                          ExitStatus& status)
{
    Options options;
    Parser parser(options);
    try
    {
        parser.App().parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return options;
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0)
        {
            parser.App().exit(error, out, errors);
            status = ExitStatus::Success;
            return std::nullopt;
        }
        status = ExitStatus::Usage;
        errors << "discovery-console: ";
        const std::vector<std::string> rest = parser.App().remaining();
        if (parser.App().get_subcommands().empty() && !rest.empty())
        {
            // The parser would only say that a command is missing.
            errors << (rest.front().starts_with('-') ? "unknown option " : "unknown command ") << rest.front()
                   << "\nRun with --help for more information.\n";
            return std::nullopt;
        }
        parser.App().exit(error, out, errors);
        return std::nullopt;
    }
}
} // namespace Zent::Discovery::Console
