#include "CommandLine.h"

#include "DiscoveryServer.ExtC.h"
#include "HostPlatform.h"
#include "Inventory/AddressText.h"
#include "Programs/ProgramVersion.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <limits>
#include <map>
#include <stdexcept>

using Zent::Discovery::Inventory::AddressText;
using Zent::Discovery::Inventory::DeviceColumn;
using Zent::Discovery::Inventory::DeviceSelection;

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

DiscoveryLogLevel ReadLogLevel(const std::string& text)
{
    static const std::map<std::string, DiscoveryLogLevel> Levels = {{"critical", DiscoveryLogCritical},
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
        app.set_version_flag("--version", std::string("discovery-console ") + Programs::ProgramVersion);
        AddGlobalOptions();
        AddCommands();
    }

    CLI::App& App() { return app; }

private:
    void AddGlobalOptions()
    {
        options.Session.Library = HostPlatform::DefaultLibraryPath();
        options.Session.LogFile = HostPlatform::DefaultLogPath();
        options.Session.LogLevel = DiscoveryLogCritical;
        app.add_option("--library", options.Session.Library, "the library to load")->capture_default_str();
        app.add_option("--log", options.Session.LogFile, "the log file to continue")->capture_default_str();
        app.add_option_function<std::string>(
               "--log-level", [this](const std::string& text) { options.Session.LogLevel = ReadLogLevel(text); },
               "critical, standard, debug or none; critical without it")
            ->type_name("LEVEL");
        app.add_option("--from", options.Session.LocalAddresses,
                       "a local address to send broadcasts from; may be repeated")
            ->type_name("IP")
            ->allow_extra_args(false);
        app.add_option_function<std::string>(
               "--min-version", [this](const std::string& text) { options.Session.MinimumVersion = text; },
               "drop messages of older protocol versions")
            ->type_name("VERSION");
        AddSeconds(app, "--wait", options.Wait, "how long to wait for devices; 2 seconds without it, watch without end",
                   0.0);
        app.add_flag("--json", options.Json, "print one JSON document per line, for scripts");
    }

    void AddCommands()
    {
        CLI::App& discover = AddCommand("discover", "ask all devices for their signatures", CommandName::Discover);
        discover.add_option("--expect", options.ExpectedDevices, "stop waiting when so many devices have answered")
            ->type_name("COUNT")
            ->check(CLI::Range(1, 100000).description(""));
        AddSelection(discover);

        CLI::App& watch = AddCommand(
            "watch", "show devices as they come, change and leave, until Ctrl-C: on a terminal in a live table",
            CommandName::Watch);
        AddSeconds(watch, "--every", options.Interval, "ask all devices at the start and again after so many seconds",
                   1.0);
        AddSelection(watch);

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
        configure.add_option("FILE", options.File, "a JSON array of interfaces")->required()->type_name("");

        AddInventory();

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

    void AddInventory()
    {
        CLI::App& inventory = *app.add_subcommand("inventory", "look at results that were saved with --json");
        inventory.fallthrough();
        inventory.require_subcommand(1);

        CLI::App& show = AddCommand("show", "show a saved result as a table", CommandName::InventoryShow, &inventory);
        show.add_option("FILE", options.File, "saved with: discover --json > FILE")->required()->type_name("");
        AddSelection(show);

        CLI::App& diff = AddCommand("diff", "tell which devices have appeared, left or changed",
                                    CommandName::InventoryDiff, &inventory);
        diff.add_option("BEFORE", options.File, "the earlier result, saved with: discover --json > FILE")
            ->required()
            ->type_name("");
        diff.add_option("AFTER", options.LaterFile, "the later result")->required()->type_name("");
        AddSelection(diff);
    }

    /// Lets the user choose which devices the command shows, and in which order.
    void AddSelection(CLI::App& command)
    {
        const auto addOption = [this, &command](const std::string& name,
                                                void (DeviceSelection::*add)(const std::string&),
                                                const std::string& description) {
            return command
                .add_option_function<std::vector<std::string>>(
                    name,
                    [this, name, add](const std::vector<std::string>& texts) {
                        for (const std::string& text : texts)
                        {
                            AddToSelection(name, add, text);
                        }
                    },
                    description)
                ->allow_extra_args(false);
        };
        addOption("--sort", &DeviceSelection::AddOrder, "sort by " + DeviceColumn::Names() + "; may be repeated")
            ->type_name("COLUMN[:desc]");
        addOption("--filter", &DeviceSelection::AddFilter,
                  "show only devices whose column matches, with * and ? as wildcards; != inverts; may be repeated")
            ->type_name("COLUMN=PATTERN");
    }

    void AddToSelection(const std::string& name,
                        void (DeviceSelection::*add)(const std::string&),
                        const std::string& text)
    {
        try
        {
            (options.Selection.*add)(text);
        }
        catch (const std::invalid_argument& error)
        {
            throw CLI::ValidationError(name, error.what());
        }
    }

    static void AddSeconds(CLI::App& command,
                           const std::string& name,
                           std::optional<std::chrono::milliseconds>& target,
                           const std::string& description,
                           double minimum)
    {
        command
            .add_option_function<double>(
                name,
                [&target](double seconds) {
                    target = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
                },
                description)
            ->type_name("SECONDS")
            ->check(CLI::Range(minimum, 86400.0).description(""))
            ->check([](const std::string& text) {
                return text.find_first_of("nN") == std::string::npos ? "" : text + " is not a time"; // nan
            });
    }

    CLI::App& AddCommand(const std::string& name,
                         const std::string& description,
                         CommandName command,
                         CLI::App* parent = nullptr)
    {
        CLI::App& added = *(parent == nullptr ? app : *parent).add_subcommand(name, description);
        added.fallthrough();
        added.callback([this, command] { options.Command = command; });
        return added;
    }

    Options& options;
    CLI::App app{"Finds devices on the local networks and talks with them.", "discovery-console"};
};

/// The innermost command that the user named; the program itself without one.
const CLI::App& LastCommand(const CLI::App& app)
{
    const std::vector<CLI::App*> commands = app.get_subcommands();
    return commands.empty() ? app : LastCommand(*commands.front());
}
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
        const CLI::App& last = LastCommand(parser.App());
        const std::vector<std::string> rest = parser.App().remaining(true);
        const bool isAboutCommands = error.get_name() == "RequiredError" || error.get_name() == "ExtrasError";
        if (isAboutCommands && last.get_require_subcommand_min() > 0 && last.get_subcommands().empty())
        {
            // The parser would only say that a command is missing.
            errors << (rest.empty()                    ? "a command is missing"
                       : rest.front().starts_with('-') ? "unknown option " + rest.front()
                                                       : "unknown command " + rest.front())
                   << "\nRun with --help for more information.\n";
            return std::nullopt;
        }
        parser.App().exit(error, out, errors);
        return std::nullopt;
    }
}
} // namespace Zent::Discovery::Console
