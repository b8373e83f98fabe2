#pragma once

#include "Fleet/FleetReading.h"
#include "ICommand.h"
#include "Inventory/Column.h"
#include "Inventory/Selection.h"

namespace Zent::Discovery::FleetConsole
{
/// Shows a line for each site.
class SitesCommand final : public ICommand
{
public:
    SitesCommand();

    CLI::App& AddTo(CLI::App& program) override;

    bool HasRows() const override { return true; }

    ExitStatus Run(CommandContext& context) override;

    /// How a command ends that has read sites; says what is missing.
    static ExitStatus Conclude(const Fleet::FleetReading& reading, CommandContext& context);

private:
    Inventory::Selection<Inventory::Column<Fleet::SiteReading>> selection;
};
} // namespace Zent::Discovery::FleetConsole
