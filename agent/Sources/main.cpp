#include "Log.h"
#include "Programs/HostSession.h"
#include "Programs/InterfaceChoice.h"
#include "Programs/Interruption.h"
#include "Programs/MessageQueue.h"
#include "Programs/Process.h"
#include "Programs/ProgramVersion.h"
#include "Programs/SystemNetwork.h"
#include "Programs/WrongArgument.h"
#include "Settings.h"
#include "SiteAgent.h"
#include "system/Exception.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string>

using namespace Zent::Discovery::Agent;
using Zent::Discovery::Programs::HostSession;
using Zent::Discovery::Programs::InterfaceChoice;
using Zent::Discovery::Programs::Interruption;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::Process;
using Zent::Discovery::Programs::SystemNetwork;
using Zent::Discovery::Programs::WrongArgument;

namespace
{
enum ExitStatus
{
    Success = 0,
    Failure = 1, // the library or the system
    Usage = 2    // the command line or the settings are wrong
};

/// What the command line says; over what the file says.
struct Options
{
    std::string Config;
    std::string Site;
    std::string Library;
    std::optional<std::uint16_t> PagePort;
    bool ChecksOnly = false;

    void AddTo(CLI::App& program)
    {
        program.add_option("--config", Config, "the file of settings; all of them have defaults")->type_name("FILE");
        program.add_flag("--check-config", ChecksOnly,
                         "say whether the agent could start with these settings on this machine, and end");
        program.add_option("--site", Site, "the site's name; this machine's without it")->type_name("NAME");
        program.add_option("--page-port", PagePort, "where the page is served; 0 for none")
            ->type_name("NUMBER")
            ->check(CLI::Range(0, 65535).description(""));
        program.add_option("--library", Library, "the library to load")->type_name("FILE");
        program.set_version_flag("--version",
                                 std::string("discovery-agent ") + Zent::Discovery::Programs::ProgramVersion);
    }

    Settings Read() const
    {
        Settings settings = Settings::Defaults();
        if (!Config.empty())
        {
            settings.Read(Config);
        }
        settings.Site = Site.empty() ? settings.Site : Site;
        settings.Session.Library = Library.empty() ? settings.Session.Library : Library;
        settings.Page.Port = PagePort.value_or(settings.Page.Port);
        settings.Check();
        return settings;
    }
};

int Serve(const Settings& settings)
{
    const bool isJournal = std::getenv("JOURNAL_STREAM") != nullptr; // NOLINT(concurrency-mt-unsafe)
    Log log(std::cout, settings.Level, isJournal);
    MessageQueue messages;
    const Interruption interruption([&messages] { messages.Interrupt(); });
    try
    {
        SiteAgent(settings, messages, log).Run();
        return Success;
    }
    catch (const WrongArgument&)
    {
        throw;
    }
    catch (const std::exception& error)
    {
        log.Error(error.what());
    }
    catch (const Nfx::System::Exception& error)
    {
        log.Error(error.GetMessage().View());
    }
    return Failure;
}

int Run(int argc, const char* const* argv)
{
    CLI::App program("Watches over the devices of this machine's networks for a site, and keeps their inventory on a "
                     "message broker.",
                     "discovery-agent");
    Options options;
    options.AddTo(program);
    try
    {
        program.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return program.exit(error) == 0 ? Success : Usage;
    }
    const Settings settings = options.Read();
    if (options.ChecksOnly)
    {
        // Whether the agent could start on this machine.
        InterfaceChoice::Check(SystemNetwork::Interfaces(), settings.Session.Interfaces);
        HostSession::Load(settings.Session.Library);
        std::cout << "the settings are right\n";
        return Success;
    }
    return Serve(settings);
}
} // namespace

int main(int argc, char* argv[])
{
    try
    {
        Process::PrepareStreams();
        return Run(argc, argv);
    }
    catch (const std::exception& error)
    {
        std::cerr << "discovery-agent: " << error.what() << '\n';
        return Usage;
    }
}
