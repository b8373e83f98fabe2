#pragma once

#include "Programs/HostSession.h"

#include <chrono>
#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace Zent::Discovery::Console
{
/// What users may say before and behind each command. All texts are UTF-8.
struct ProgramOptions
{
    /// Adds them to the program's; reading the command line fills them.
    void AddTo(CLI::App& program);

    Programs::HostSession::Settings Session;
    std::string Journal; // the file of the journal of changes; empty for none
    bool IsJournalChosen = false;
    std::optional<std::chrono::milliseconds> Wait;
    bool Json = false;
    bool Csv = false;

private:
    void AddInterfaces(CLI::App& program);
};
} // namespace Zent::Discovery::Console
