#pragma once

#include "DiscoveryLibrary.h"
#include "MessageQueue.h"
#include "Options.h"

#include <string>

namespace Zent::Discovery::Console
{
/// The library at work: initialized, server started, its messages on the way to a queue. At most one at a time, since
/// the library's callbacks know of no user data. Main thread only.
class ServerSession final
{
public:
    /// Starts the server. The library and the queue must outlive the session.
    /// @throws CallFailure when the library refuses; nothing is left running.
    ServerSession(const DiscoveryLibrary& library, const Options& options, MessageQueue& messages);

    /// Closes, in silence, what Close has not closed.
    ~ServerSession();

    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    /// Stops the server and terminates the library, which it does even when the server does not stop. No message is
    /// queued afterwards.
    /// @throws CallFailure with the first failure of the two.
    void Close();

    MessageQueue& Messages() const;

    // The requests of the library.
    // @throws CallFailure when the library refuses.

    void Discover();
    void RefreshClient(const std::string& macAddress);
    void ReachClient(const std::string& ipAddress);
    void ChangeHostName(const std::string& newHostName, const std::string& macAddress);
    void ChangeHostNameWithIP(const std::string& newHostName, const std::string& ipAddress);
    void ChangeIPConfigurations(const std::string& nicConfigsJson);

private:
    void Start(const Options& options);
    void Check(const char* function, int code) const;

    const DiscoveryLibrary& library;
    MessageQueue& messages;
    bool isOpen = false;
};
} // namespace Zent::Discovery::Console
