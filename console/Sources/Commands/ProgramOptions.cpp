#include "Commands/ProgramOptions.h"

#include "Commands/Arguments.h"
#include "Terminal/HostPlatform.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>

namespace Zent::Discovery::Console
{
namespace
{
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
} // namespace

void ProgramOptions::AddTo(CLI::App& program)
{
    Session.Library = HostPlatform::DefaultLibraryPath();
    Session.LogFile = HostPlatform::DefaultLogPath();
    program.add_option("--library", Session.Library, "the library to load")->capture_default_str();
    program.add_option("--log", Session.LogFile, "the log file to continue")->capture_default_str();
    program
        .add_option_function<std::string>(
            "--log-level", [this](const std::string& text) { Session.LogLevel = ReadLogLevel(text); },
            "critical, standard, debug or none; critical without it")
        ->type_name("LEVEL");
    Journal = HostPlatform::DefaultJournalPath();
    program.add_option("--journal", Journal, "the journal of changes to continue, which undo reads")
        ->type_name("FILE")
        ->capture_default_str()
        ->each([this](const std::string& /*text*/) { IsJournalChosen = true; });
    AddInterfaces(program);
    program
        .add_option_function<std::string>(
            "--min-version", [this](const std::string& text) { Session.MinimumVersion = text; },
            "drop messages of older protocol versions")
        ->type_name("VERSION");
    Arguments(program).AddSeconds(
        "--wait", Wait, "how long to wait for devices; 2 seconds without it, 10 in a search, watch without end", 0.0);
    CLI::Option* const json = program.add_flag("--json", Json, "print one JSON document per line, for scripts");
    program.add_flag("--csv", Csv, "print comma-separated values, for spreadsheets")->excludes(json);
}

void ProgramOptions::AddInterfaces(CLI::App& program)
{
    Programs::InterfaceChoice::Wishes& wishes = Session.Interfaces;
    CLI::Option* const from =
        program
            .add_option("--from", wishes.Addresses, "send broadcasts from this local address alone; may be repeated")
            ->type_name("IP")
            ->allow_extra_args(false);
    CLI::Option* const name = program
                                  .add_option("--interface", wishes.Names,
                                              "send broadcasts from this network interface alone; may be repeated")
                                  ->type_name("NAME")
                                  ->allow_extra_args(false)
                                  ->excludes(from);
    program
        .add_flag("--all-interfaces", wishes.All,
                  "send broadcasts from loopback, virtual and point-to-point interfaces, too")
        ->excludes(from)
        ->excludes(name);
}
} // namespace Zent::Discovery::Console
