#pragma once

#include "Commands/ProgramOptions.h"
#include "Programs/JournalFile.h"
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

    /// The library at work, whose messages go to the queue. Tells the user when the journal holds open changes.
    /// @throws std::runtime_error when it cannot be loaded or refuses.
    Programs::HostSession& Session();

    /// The journal of changes as it is now.
    /// @throws std::runtime_error when the file cannot be read.
    Inventory::Journal ReadJournal();

    /// Appends a line to the journal. A journal that the user has not chosen and that cannot be written costs a
    /// warning. False when there is none.
    /// @throws std::runtime_error when the file that the user has chosen cannot be written.
    bool WriteJournal(const std::string& line);

    /// Makes requests of the library.
    /// @throws std::runtime_error as Session does.
    DiscoverySession& Requests() { return Session().Requests(); }

    /// Says that no interface takes part at this moment, and which are left out; empty while one does.
    /// @throws std::runtime_error as Session does.
    std::string WhyNoInterface();

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
    void TellOpenChanges();

    const ProgramOptions& options;
    Programs::MessageQueue& messages;
    Output& output;
    std::optional<Programs::HostSession> session;
    const Programs::JournalFile journal;
    bool isJournalKnown = false;   // to the command, which shows what is in it
    bool isJournalMissing = false; // and the user has been told
};
} // namespace Zent::Discovery::Console
