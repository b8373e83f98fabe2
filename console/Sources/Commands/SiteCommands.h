#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Text/TerminalText.h"

#include <string>

namespace Zent::Discovery::Console
{
/// Writes which names and addresses devices have, so that they can be compared with it or get them back.
class SiteExportCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    bool HasCsv() const override { return false; }

    ExitStatus Run(CommandContext& context) override;

private:
    std::string file; // its UTF-8 path
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};

/// Tells how devices are otherwise than a site file wants them.
class SiteDiffCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string file; // its UTF-8 path
};
} // namespace Zent::Discovery::Console
