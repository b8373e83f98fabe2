#pragma once

#include "Commands/ChangeSettings.h"
#include "Commands/ICommand.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Gives a device a new host name and finds out whether it has taken it.
class RenameCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    ChangeSettings settings;
    std::string newHostName;
    std::string macAddress; // empty when ipAddress is set
    std::string ipAddress;
};
} // namespace Zent::Discovery::Console
