#pragma once

#include "Fleet/BrokerCheck.h"
#include "ICommand.h"

#include <string>
#include <vector>

namespace Zent::Discovery::FleetConsole
{
/// Tries whether the broker keeps and gives what the inventory needs.
class CheckBrokerCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    /// False when not even one probe was written.
    static bool Observe(CommandContext& context, const std::string& client, Fleet::BrokerObservations& observations);
    static bool CleanUp(CommandContext& context, const std::string& client);
    static void Tell(CommandContext& context,
                     const Fleet::BrokerObservations& observations,
                     const std::vector<Fleet::BrokerFinding>& findings);
};
} // namespace Zent::Discovery::FleetConsole
