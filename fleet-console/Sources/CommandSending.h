#pragma once

#include "Fleet/Command.h"
#include "ICommand.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::FleetConsole
{
/// Sends commands to the agent of the one site that the user names. Main thread only.
class CommandSending final
{
public:
    CommandSending() = delete;

    /// @throws Programs::WrongArgument when it is not just one.
    static const std::string& SiteOf(const CommandContext& context);

    /// What the agent says to each of the commands, or why it says nothing. They are not carried out any more when
    /// patience is over, and nobody waits longer; without it that is as long as a verdict can take. Nothing for those
    /// that wait when the user interrupts, or the connection breaks, which is told.
    /// @throws std::runtime_error when the broker cannot be reached; WrongArgument when the user's name is none that
    /// replies can be sent to.
    static std::vector<std::optional<Fleet::Verdict>> Send(CommandContext& context,
                                                           std::vector<Fleet::Command> commands,
                                                           const std::optional<std::chrono::milliseconds>& patience,
                                                           const std::string& status);

    /// A sentence for people: the name "press-4" is the name of 02:00:00:00:00:04 (name-taken)
    static std::string SentenceOf(const Fleet::Verdict& verdict);

    /// How a command ends with these verdicts, of which the good one is named: 2 when nothing was sent, 3 when
    /// something has come to anything but that.
    static ExitStatus StatusOf(const std::vector<Fleet::Verdict>& verdicts, const char* good);
};
} // namespace Zent::Discovery::FleetConsole
