#pragma once

#include "ICommand.h"
#include "PageOptions.h"

namespace Zent::Discovery::FleetConsole
{
/// Shows all sites on a page for browsers, until it is interrupted.
class ServeCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    PageOptions page;
};
} // namespace Zent::Discovery::FleetConsole
