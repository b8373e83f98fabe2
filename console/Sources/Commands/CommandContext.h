#pragma once

#include "Commands/ProgramOptions.h"
#include "Programs/MessageQueue.h"

#include <chrono>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
class Output;

/// What a command runs with. The library is loaded, and its server started, when the command first needs it. Main
/// thread only.
class CommandContext final
{
public:
    /// All must outlive the object.
    CommandContext(const ProgramOptions& options, Programs::MessageQueue& messages, Output& output);

    const ProgramOptions& Options() const { return options; }

    Output& Out() { return output; }

    /// How long to wait for devices: what the user says or else two seconds.
    std::chrono::milliseconds Wait() const;

    /// Where the messages of devices come.
    Programs::MessageQueue& Messages() { return messages; }

    /// The library at work, whose messages go to the queue.
    /// @throws std::runtime_error when it cannot be loaded or refuses.
    Programs::HostSession& Session();

    /// Makes requests of the library.
    /// @throws std::runtime_error as Session does.
    DiscoverySession& Requests() { return Session().Requests(); }

    /// Whether broadcasts leave this machine; tells the user when no interface takes part.
    /// @throws std::runtime_error as Session does.
    bool CanBroadcast();

    /// Whether the system knows a way to the address; tells the user when not. The library would take that for a broken
    /// network and restart itself. A text that is no address is left for the library to refuse.
    bool CanReach(const std::string& ipAddress);

    /// Ends what Session has begun.
    /// @throws DiscoveryError when the library refuses.
    void Close();

private:
    const ProgramOptions& options;
    Programs::MessageQueue& messages;
    Output& output;
    std::optional<Programs::HostSession> session;
};
} // namespace Zent::Discovery::Console
