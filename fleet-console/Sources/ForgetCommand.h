#pragma once

#include "ICommand.h"

#include <string>

namespace Zent::Discovery::FleetConsole
{
/// Removes all that the broker has of a site.
class ForgetCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    ExitStatus Confirm(CommandContext& context) const;
    ExitStatus Remove(CommandContext& context) const;

    std::string site;
    bool yes = false;
    bool force = false;
};
} // namespace Zent::Discovery::FleetConsole
