#pragma once

#include "Programs/NetworkInterface.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// What the system tells of its network. Any thread.
class SystemNetwork final
{
public:
    SystemNetwork() = delete;

    /// All interfaces, in the system's order.
    /// @throws std::system_error when the system does not tell.
    static std::vector<NetworkInterface> Interfaces();

    /// Whether the system knows where to send what goes to that address. Nothing is sent.
    static bool HasRoute(Inventory::IPv4 address);
};

/// Waits for changes of interfaces and addresses, as far as the system tells of them.
class NetworkChanges
{
public:
    static std::unique_ptr<NetworkChanges> Create();

    NetworkChanges(const NetworkChanges&) = delete;
    NetworkChanges& operator=(const NetworkChanges&) = delete;

    virtual ~NetworkChanges() = default;

    /// Returns when something may have changed or the time is over. False after Stop. One thread.
    virtual bool Wait(std::chrono::milliseconds time) = 0;

    /// Ends a waiting Wait and every later one. Any thread.
    virtual void Stop() = 0;

protected:
    NetworkChanges() = default;
};
} // namespace Zent::Discovery::Programs
