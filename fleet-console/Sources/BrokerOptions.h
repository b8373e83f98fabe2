#pragma once

#include "Broker/BrokerSettings.h"

#include <string>

namespace CLI
{
class App;
}

namespace Zent::Discovery::FleetConsole
{
/// The options that say how to reach the broker. Reading the command line fills them; they must outlive it.
class BrokerOptions final
{
public:
    void AddTo(CLI::App& program);

    /// With an identifier that no other start of the program has.
    /// @throws Programs::WrongArgument when the broker's name, its port or the password's file cannot be used.
    Broker::BrokerSettings Settings() const;

private:
    std::string broker = "localhost";
    std::string passwordFile;
    Broker::BrokerSettings settings;
};
} // namespace Zent::Discovery::FleetConsole
