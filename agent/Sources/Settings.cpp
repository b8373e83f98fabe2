#include "Settings.h"

#include "Fleet/Topics.h"
#include "Inventory/Event.h"
#include "Programs/WrongArgument.h"
#include "SettingsFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Agent
{
namespace
{
std::string EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): the environment never changes
    return value == nullptr ? "" : value;
}

/// A secret that the service manager has put there; empty when it has not.
std::string Credential(const char* name)
{
    const std::string folder = EnvironmentVariable("CREDENTIALS_DIRECTORY");
    const std::string file = folder + "/" + name;
    return !folder.empty() && std::filesystem::exists(file) ? file : "";
}

constexpr std::uint16_t UsualPagePort = 12080;

std::string SiteOfMachine()
{
    char name[256] = {};
    gethostname(name, sizeof(name) - 1);
    return Fleet::SiteTopics::IsName(name) ? name : "site";
}

/// Found from the program's own place.
std::string InstalledLibrary()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix = program.parent_path().parent_path();
    const std::filesystem::path installed = prefix / NFX_INSTALLED_LIBRARY;
    return std::filesystem::exists(installed) ? installed : prefix / "lib" / installed.filename(); // in a build folder
}
} // namespace

Settings Settings::Defaults()
{
    Settings settings;
    settings.Site = SiteOfMachine();
    settings.StateFolder = EnvironmentVariable("STATE_DIRECTORY");
    settings.Session.Library = InstalledLibrary();
    settings.Session.Interfaces.AddressSetting = "discovery.addresses";
    settings.Session.Interfaces.NameSetting = "discovery.interfaces";
    settings.PasswordFile = Credential("broker-password");
    settings.Page.Port = UsualPagePort;
    settings.Page.TokenFile = Credential("page-token");
    return settings;
}

void Settings::Read(const std::string& path)
{
    SettingsFile file(path);
    file.Text("", "site", Site, [](const std::string& text) { const Fleet::SiteTopics checked(text); });
    file.Choice("", "log-level", Level,
                {{"error", Log::LogLevel::Error}, {"warning", Log::LogLevel::Warning}, {"info", Log::LogLevel::Info}});

    if (file.Text("discovery", "library", Session.Library) && Session.Library.empty())
    {
        Session.Library = InstalledLibrary();
    }
    file.Texts("discovery", "interfaces", Session.Interfaces.Names);
    file.Texts("discovery", "addresses", Session.Interfaces.Addresses);
    file.Flag("discovery", "all-interfaces", Session.Interfaces.All);
    file.Text("discovery", "log", Session.LogFile);
    file.Choice("discovery", "log-level", Session.LogLevel,
                {{"none", DiscoveryLogNone},
                 {"critical", DiscoveryLogCritical},
                 {"standard", DiscoveryLogStandard},
                 {"debug", DiscoveryLogDebug}});
    file.Number("discovery", "ask-every", AskEvery, 1, 3600);
    file.Flag("discovery", "sweep", Sweeps);
    file.Texts("discovery", "accepted-conflicts", AcceptedConflicts,
               [](const std::string& text) { Inventory::Conflict::CheckText(text); });

    HasBroker = file.Text("broker", "host", Broker.Host) && !Broker.Host.empty();
    file.Flag("broker", "tls", Broker.UsesTls);
    Broker.Port = Broker.UsesTls ? 8883 : 1883;
    file.Number("broker", "port", Broker.Port, 1, 65535);
    file.Text("broker", "authority", Broker.AuthorityFile);
    file.Text("broker", "certificate", Broker.CertificateFile);
    Broker.KeyFile = Broker.CertificateFile.empty() ? "" : Credential("broker-key");
    file.Text("broker", "key", Broker.KeyFile);
    file.Text("broker", "user", Broker.User);
    file.Text("broker", "password-file", PasswordFile);
    file.Number("broker", "keep-alive", Broker.KeepAlive, 5, 600);
    file.Number("broker", "longest-retry", Broker.LongestRetry, 1, 3600);
    file.Flag("broker", "commands", TakesCommands);

    file.Text("page", "address", Page.Address);
    file.Number("page", "port", Page.Port, 0, 65535);
    file.Text("page", "certificate", Page.CertificateFile);
    Page.KeyFile = Page.CertificateFile.empty() ? "" : Credential("page-key");
    file.Text("page", "key", Page.KeyFile);
    file.Text("page", "authority", Page.AuthorityFile);
    file.Text("page", "token-file", Page.TokenFile);
    file.Texts("page", "names", Page.Names);
    file.RefuseOthers();

    if (!PasswordFile.empty())
    {
        Broker.ReadPassword(PasswordFile);
    }
}

bool Settings::CanTakeCommands() const
{
    const bool hasIdentity = !Broker.CertificateFile.empty() || (!Broker.User.empty() && !Broker.Password.empty());
    return HasBroker && Broker.UsesTls && hasIdentity;
}

void Settings::Check() const
{
    try
    {
        const Fleet::SiteTopics checked(Site);
    }
    catch (const std::invalid_argument& error)
    {
        throw WrongArgument(std::string("--site: ") + error.what());
    }
    if (TakesCommands && !CanTakeCommands())
    {
        throw WrongArgument("commands = true needs a broker with tls = true and either user and password-file or "
                            "certificate and key");
    }
    if (Broker.CertificateFile.empty() != Broker.KeyFile.empty())
    {
        throw WrongArgument("certificate and key of the broker belong together");
    }
    if (HasBroker && Broker.User.empty() && !Broker.Password.empty())
    {
        throw WrongArgument("the password of the broker needs user");
    }
    if (!Broker.UsesTls && !(Broker.AuthorityFile.empty() && Broker.CertificateFile.empty()))
    {
        throw WrongArgument("authority, certificate and key of the broker need tls = true");
    }
    if (const std::string wrong = Broker.WrongWithFiles(); !wrong.empty())
    {
        throw WrongArgument("[broker]: " + wrong);
    }
    if (HasPage())
    {
        Page.Check();
    }
}
} // namespace Zent::Discovery::Agent
