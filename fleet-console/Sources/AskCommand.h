#pragma once

#include "Fleet/Command.h"
#include "ICommand.h"

#include <chrono>
#include <optional>
#include <string>

namespace Zent::Discovery::FleetConsole
{
/// Has the agent of a site ask its devices what they are.
class AskCommand final : public ICommand
{
public:
    /// Discover is for all devices, Refresh for one.
    explicit AskCommand(Fleet::Command::CommandKind kind);

    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

    /// Why a text is no id of a device; empty when it is one.
    static std::string WrongWithId(const std::string& text);

private:
    Fleet::Command request;
    std::optional<std::chrono::milliseconds> timeout;
};
} // namespace Zent::Discovery::FleetConsole
