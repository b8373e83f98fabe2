#pragma once

#include "DiscoverySession.h"
#include "Programs/InterfaceChoice.h"
#include "Programs/Mutex.h"
#include "Programs/SystemNetwork.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace Zent::Discovery::Programs
{
/// The library at work for a program: its log open, its server started, its broadcasts on their way from all interfaces
/// that take part, whichever come and go. Main thread only, unless said otherwise.
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
        InterfaceChoice::Wishes Interfaces;
    };

    struct Handlers
    {
        std::function<void(const std::string& text)> Warn; // on the thread that makes the session

        // On a thread of the library.
        DiscoverySession::Handler Signature;
        DiscoverySession::Handler Hello;
        DiscoverySession::Handler Bye;
    };

    /// The functions of the library at that path, which users choose with --library.
    /// @throws std::runtime_error with the reason and what to do when it cannot be loaded.
    static DiscoveryFunctions Load(const std::string& path);

    /// Loads the library and starts the server. A log that cannot be opened costs a warning, and the session has none.
    /// @throws std::runtime_error when the library cannot be loaded, WrongArgument when the machine does not have the
    /// interfaces that the user wishes, DiscoveryError when the library refuses.
    HostSession(const Settings& settings, Handlers handlers);

    /// Closes, in silence, what Close has not closed.
    ~HostSession();

    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    /// For requests. Any thread may make them.
    DiscoverySession& Requests() { return *session; }

    /// The interfaces that take part at this moment. Any thread.
    InterfaceChoice Interfaces() const;

    /// How often the interfaces that take part have changed since the start. Any thread.
    unsigned InterfaceChanges() const { return changes; }

    /// Stops the server and closes the log. No handler runs afterwards.
    /// @throws DiscoveryError when the library refuses.
    void Close();

private:
    void Watch();
    void Install(const InterfaceChoice& next);
    void StopWatching();

    const InterfaceChoice::Wishes wishes;
    mutable Mutex choiceLock;
    InterfaceChoice choice NFX_GUARDED_BY(choiceLock);
    const std::unique_ptr<DiscoverySession> session;
    std::atomic<unsigned> changes{0}; // written by the watcher
    const std::unique_ptr<NetworkChanges> networkChanges = NetworkChanges::Create();
    std::thread watcher;
};
} // namespace Zent::Discovery::Programs
