#include "Programs/HostSession.h"

#include "DiscoveryLibrary.h"
#include "Programs/Process.h"

#include <chrono>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Zent::Discovery::Programs
{
namespace
{
/// How soon a change is seen of which the system does not tell.
constexpr std::chrono::seconds LookInterval{1};

/// The interfaces that take part now, where the machine has what the user wishes.
InterfaceChoice Checked(const InterfaceChoice::Wishes& wishes)
{
    const std::vector<NetworkInterface> interfaces = SystemNetwork::Interfaces();
    InterfaceChoice::Check(interfaces, wishes);
    return {interfaces, wishes};
}

std::unique_ptr<DiscoverySession> Open(const HostSession::Settings& settings,
                                       const std::function<void(const std::string& text)>& warn)
{
    const DiscoveryFunctions library = HostSession::Load(settings.Library);
    try
    {
        return std::make_unique<DiscoverySession>(library, settings.LogFile, settings.LogLevel);
    }
    catch (const DiscoveryError& error)
    {
        warn((settings.LogFile.empty() ? "--log names no file" : std::string(error.what())) +
             "; going on without a log");
        return std::make_unique<DiscoverySession>(library, Process::NullDevice(), DiscoveryLogNone);
    }
}
} // namespace

DiscoveryFunctions HostSession::Load(const std::string& path)
{
    try
    {
        return DiscoveryLibrary(path).Functions();
    }
    catch (const std::runtime_error& error)
    {
        throw std::runtime_error(std::string(error.what()) + "; --library names another one");
    }
}

HostSession::HostSession(const Settings& settings, Handlers handlers)
    : wishes(settings.Interfaces)
    , choice(Checked(wishes))
    , session(Open(settings, handlers.Warn))
{
    session->OnSignature(std::move(handlers.Signature));
    session->OnHello(std::move(handlers.Hello));
    session->OnBye(std::move(handlers.Bye));
    if (settings.MinimumVersion)
    {
        session->SetMinCompatibleVersion(*settings.MinimumVersion);
    }
    session->Start();
    Install(choice);
    watcher = std::thread([this] { Watch(); });
}

HostSession::~HostSession()
{
    StopWatching();
}

InterfaceChoice HostSession::Interfaces() const
{
    const Lock guard(choiceLock);
    return choice;
}

void HostSession::Close()
{
    StopWatching();
    session->Close();
}

void HostSession::Watch()
{
    while (networkChanges->Wait(LookInterval))
    {
        try
        {
            InterfaceChoice next(SystemNetwork::Interfaces(), wishes);
            if (next.AddressTexts() != Interfaces().AddressTexts())
            {
                Install(next);
                const Lock guard(choiceLock);
                choice = std::move(next);
                ++changes;
            }
        }
        catch (const std::runtime_error&)
        {
            // The system or the library, which may be restarting itself, refuses: the next look tries again.
        }
    }
}

void HostSession::Install(const InterfaceChoice& next)
{
    session->InitBroadcastProvider(next.AddressTexts());
}

void HostSession::StopWatching()
{
    networkChanges->Stop();
    if (watcher.joinable())
    {
        watcher.join();
    }
}
} // namespace Zent::Discovery::Programs
