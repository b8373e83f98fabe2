#pragma once

#include "Commands/MessageQueue.h"
#include "Commands/ProgramOptions.h"

#include <chrono>
#include <optional>

namespace Zent::Discovery::Console
{
class Output;

/// What a command runs with. The library is loaded, and its server started, when the command first needs it. Main
/// thread only.
class CommandContext final
{
public:
    /// All must outlive the object.
    CommandContext(const ProgramOptions& options, MessageQueue& messages, Output& output);

    const ProgramOptions& Options() const { return options; }

    Output& Out() { return output; }

    /// How long to wait for devices: what the user says or else two seconds.
    std::chrono::milliseconds Wait() const;

    /// Where the messages of devices come.
    MessageQueue& Messages() { return messages; }

    /// The library at work, whose messages go to the queue.
    /// @throws std::runtime_error when it cannot be loaded or refuses.
    Programs::HostSession& Session();

    /// Makes requests of the library.
    /// @throws std::runtime_error as Session does.
    DiscoverySession& Requests() { return Session().Requests(); }

    /// Ends what Session has begun.
    /// @throws DiscoveryError when the library refuses.
    void Close();

private:
    const ProgramOptions& options;
    MessageQueue& messages;
    Output& output;
    std::optional<Programs::HostSession> session;
};
} // namespace Zent::Discovery::Console
