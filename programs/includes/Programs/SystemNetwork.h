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
class NetworkChanges final
{
public:
    NetworkChanges();
    ~NetworkChanges();

    NetworkChanges(const NetworkChanges&) = delete;
    NetworkChanges& operator=(const NetworkChanges&) = delete;

    /// Returns when something may have changed or the time is over. False after Stop. One thread.
    bool Wait(std::chrono::milliseconds time);

    /// Ends a waiting Wait and every later one. Any thread.
    void Stop();

private:
    class System;

    const std::unique_ptr<System> system;
};
} // namespace Zent::Discovery::Programs
