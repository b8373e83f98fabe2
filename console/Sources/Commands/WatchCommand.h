#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Terminal/Terminal.h"
#include "Text/TerminalText.h"

#include <chrono>
#include <memory>
#include <optional>

namespace Zent::Discovery::Console
{
class IWatchView;
class Output;

/// Shows devices as their messages come: in a live table on a terminal, else message by message.
class WatchCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    /// Watches until the user interrupts when no time is given.
    ExitStatus Run(CommandContext& context) override;

private:
    ExitStatus Watch(CommandContext& context, IWatchView& view) const;
    std::unique_ptr<IWatchView> MakeView(const Terminal& terminal, Output& output) const;

    std::optional<std::chrono::milliseconds> interval; // from one question to the next; nothing to listen only
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
