#pragma once

#include "Commands/ChangeRun.h"
#include "Commands/ICommand.h"

#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
/// Gives network interfaces of devices new settings and finds out whether they have taken them.
class ConfigureCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    ChangeSettings settings;
    std::optional<std::chrono::milliseconds> confirm;
    std::string file; // its UTF-8 path
};
} // namespace Zent::Discovery::Console
