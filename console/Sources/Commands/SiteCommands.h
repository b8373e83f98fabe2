#pragma once

#include "Commands/ChangeRun.h"
#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Inventory/SitePlan.h"
#include "Text/TerminalText.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
class Output;

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

/// Gives devices the names and addresses of a site file.
class SiteApplyCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;

    ExitStatus Run(CommandContext& context) override;

private:
    bool Accept(const Inventory::SitePlan& plan, std::vector<ChangeRun::Wanted>& wanted, Output& output) const;

    std::string file; // its UTF-8 path
    ChangeSettings settings;
    Inventory::SitePlan::Options options;
};
} // namespace Zent::Discovery::Console
