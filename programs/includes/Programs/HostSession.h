#pragma once

#include "DiscoverySession.h"

#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// The library at work for a program: its log open, its server started, its messages on the way to the program. Main
/// thread only.
class HostSession final
{
public:
    /// What the user may choose. All texts are UTF-8.
    struct Settings
    {
        std::string Library;
        std::string LogFile;
        DiscoveryLogLevel LogLevel = DiscoveryLogCritical;
        std::optional<std::string> MinimumVersion;
        std::vector<std::string> LocalAddresses; // to send from; empty for the system's choice
    };

    /// Are called on a thread of the library.
    struct Handlers
    {
        DiscoverySession::Handler Signature;
        DiscoverySession::Handler Hello;
        DiscoverySession::Handler Bye;
    };

    /// The functions of the library at that path, which users choose with --library.
    /// @throws std::runtime_error with the reason and what to do when it cannot be loaded.
    static DiscoveryFunctions Load(const std::string& path);

    /// Loads the library and starts the server.
    /// @throws std::runtime_error when the library cannot be loaded; DiscoveryError when it refuses.
    HostSession(const Settings& settings, Handlers handlers);

    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    /// For requests.
    DiscoverySession& Requests() { return session; }

    /// Stops the server and closes the log. No handler runs afterwards.
    /// @throws DiscoveryError when the library refuses.
    void Close() { session.Close(); }

private:
    DiscoverySession session;
};
} // namespace Zent::Discovery::Programs
