#include "Programs/HostSession.h"

#include "DiscoveryLibrary.h"

#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Programs
{
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
    : session(Load(settings.Library), settings.LogFile, settings.LogLevel)
{
    session.OnSignature(std::move(handlers.Signature));
    session.OnHello(std::move(handlers.Hello));
    session.OnBye(std::move(handlers.Bye));
    if (settings.MinimumVersion)
    {
        session.SetMinCompatibleVersion(*settings.MinimumVersion);
    }
    session.Start();
    if (!settings.LocalAddresses.empty())
    {
        session.InitBroadcastProvider(settings.LocalAddresses);
    }
}
} // namespace Zent::Discovery::Programs
