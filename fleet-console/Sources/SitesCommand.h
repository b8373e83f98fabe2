#pragma once

#include "Fleet/FleetReading.h"
#include "ICommand.h"

namespace Zent::Discovery::FleetConsole
{
/// Shows a line for each site.
class SitesCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

    /// How a command ends that has read sites; says what is missing.
    static ExitStatus Conclude(const Fleet::FleetReading& reading, CommandContext& context);
};
} // namespace Zent::Discovery::FleetConsole
