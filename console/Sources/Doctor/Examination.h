#pragma once

#include "Doctor/Observations.h"

#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
class CommandContext;
struct ProgramOptions;
} // namespace Zent::Discovery::Console

namespace Zent::Discovery::Console::Doctor
{
/// Collects what the checks judge. Main thread only, unless said otherwise.
class Examination final
{
public:
    Examination() = delete;

    /// What the system tells, without a search.
    /// @throws Programs::WrongArgument when the machine does not have the interfaces that the user wishes;
    /// std::system_error when the system does not tell.
    static Observations OfSystem(const ProgramOptions& options);

    /// Runs one search with a log of its own, which is gone afterwards. Nothing when the user has interrupted it.
    /// @throws std::runtime_error when the library cannot be loaded or refuses, or there is no folder for the log.
    static std::optional<SearchResult> Search(CommandContext& context);

    /// Why a search that has just ended, after so many seconds, has found nobody: one sentence for the user, unfit for
    /// a terminal. It looks at the system and at the log of that search, and does not search itself. Any thread; takes
    /// some seconds on a busy system.
    static std::string ReasonForSilence(const ProgramOptions& options, double seconds);

    /// Who has the port of hosts, so that no server can start: one sentence, unfit for a terminal; empty when it is
    /// free.
    static std::string ReasonForTakenPort(const ProgramOptions& options);
};
} // namespace Zent::Discovery::Console::Doctor
