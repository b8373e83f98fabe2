#pragma once

#include "Inventory/Session.h"
#include "Programs/SystemAnswers.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace Zent::Discovery::Programs
{
class HostSession;
class MessageQueue;

/// Runs a session: gives it the messages that come and the time, and does what it wishes. Main thread only.
class SessionDriver final
{
public:
    /// Is called with each message before the session is.
    using Watcher = std::function<void(const Inventory::DeviceMessage& message)>;

    /// What is left out is told there.
    using Complain = std::function<void(const std::string& text)>;

    /// The messages of the host session go to the queue; both must outlive the driver.
    SessionDriver(HostSession& host,
                  MessageQueue& messages,
                  const Inventory::DeviceTableOptions& options,
                  Complain complain,
                  Watcher watcher = {});

    Inventory::Session& Session() { return session; }

    const Inventory::Session& Session() const { return session; }

    /// Since the driver was made.
    Inventory::Time Now() const;

    /// When all devices were asked last; nothing before.
    const std::optional<Inventory::Time>& LastRound() const { return lastRound; }

    /// How many messages were left out because they were none of the library's.
    std::size_t Unreadable() const { return unreadable; }

    /// Waits for messages, for that time at most, and lets the session go on. False once the user has interrupted.
    bool Run(std::chrono::milliseconds longest);

    /// Asks all devices at once. False while the library restarts itself and takes no requests.
    bool AskAll();

    /// Asks the device with that MAC address. False as AskAll.
    bool Ask(const std::string& macAddress);

    /// Asks the device at that IP address, to which there must be a route. False as AskAll.
    bool Reach(const std::string& ipAddress);

    /// Sets what is called before a device is told to change, with the id of the change; more than once when the
    /// library does not take the request at once. What it throws comes out of Run, and nothing is sent.
    void OnRequest(std::function<void(std::int64_t change)> handler) { onRequest = std::move(handler); }

private:
    void Feed(Inventory::DeviceMessage message);
    bool CarryOut(const Inventory::Wish& wish);
    bool TryToCarryOut(const Inventory::Wish& wish);
    void ComplainAboutLoss();

    HostSession& host;
    MessageQueue& messages;
    const Complain complain;
    const Watcher watcher;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    Inventory::Session session;
    SystemAnswers systemAnswers;
    std::function<void(std::int64_t change)> onRequest;
    std::size_t knownLoss = 0;
    std::size_t unreadable = 0;
    std::optional<Inventory::Time> lastRound;
};
} // namespace Zent::Discovery::Programs
