#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Inventory/DeviceTable.h"
#include "Text/TerminalText.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
class SessionDriver;
} // namespace Zent::Discovery::Programs

namespace Zent::Discovery::Console
{
class IWatchView;
class SiteGuard;
class SiteState;
class Terminal;

/// Watches over the devices and shows what becomes of them: in a live table on a terminal, else message by message.
class WatchCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    /// Watches until the user wants no more, when no time is given.
    ExitStatus Run(CommandContext& context) override;

private:
    Inventory::DeviceTableOptions OptionsOfTable() const;
    std::unique_ptr<IWatchView> MakeView(const Terminal& terminal, CommandContext& context, const SiteState* site);
    void Watch(CommandContext& context,
               Programs::SessionDriver& driver,
               IWatchView& view,
               SiteGuard* guard,
               const bool& isRead);

    bool listensOnly = false;
    std::vector<std::string> acceptedConflicts;
    std::optional<std::chrono::milliseconds> interval; // from one question to all to the next
    Inventory::DeviceSelection selection{&TerminalText::Plain};
    std::string siteFile;                  // its UTF-8 path; empty for none
    std::string repairs;                   // names, or nothing
    std::atomic<bool> isKeyPressed{false}; // set by a thread of the view
};
} // namespace Zent::Discovery::Console
