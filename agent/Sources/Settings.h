#pragma once

#include "Broker/BrokerSettings.h"
#include "Log.h"
#include "Page/PageSettings.h"
#include "Programs/HostSession.h"

#include <chrono>
#include <string>
#include <vector>

namespace Zent::Discovery::Agent
{
/// What whoever runs the agent may choose; every setting has a default.
struct Settings
{
    /// Site is this machine's name, as far as a site may be called so.
    static Settings Defaults();

    /// Takes the settings of a file over those that are there.
    /// @throws Programs::WrongArgument with file, line and column of what is wrong.
    void Read(const std::string& path);

    /// Whether commands can be told from anybody's: who sends them has shown who he is, and nobody reads or changes
    /// them on the way.
    bool CanTakeCommands() const;

    /// Refuses settings that do not go together.
    /// @throws Programs::WrongArgument.
    void Check() const;

    std::string Site;
    Log::LogLevel Level = Log::LogLevel::Info;
    std::string StateFolder;                 // for the log of commands; $STATE_DIRECTORY, empty without it
    Programs::HostSession::Settings Session; // without a log file the library's log is read by the agent
    std::chrono::seconds AskEvery{10};
    bool Sweeps = true;
    std::vector<std::string> AcceptedConflicts;

    bool HasBroker = false;
    Broker::BrokerSettings Broker;
    std::string PasswordFile; // $CREDENTIALS_DIRECTORY/broker-password when that is there
    bool TakesCommands = false;

    Page::PageSettings Page; // its port is 0 when none is served

    bool HasPage() const { return Page.Port != 0; }
};
} // namespace Zent::Discovery::Agent
