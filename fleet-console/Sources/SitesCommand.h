#pragma once

#include "Fleet/SiteReading.h"
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

private:
    Inventory::Selection<Inventory::Column<Fleet::SiteReading>> selection;
};
} // namespace Zent::Discovery::FleetConsole
