#pragma once

#include "Commands/ICommand.h"
#include "Inventory/DeviceSelection.h"
#include "Inventory/Network.h"
#include "Inventory/SearchOptions.h"
#include "Text/TerminalText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
class Device;
class DeviceList;
} // namespace Zent::Discovery::Inventory

namespace Zent::Discovery::Programs
{
class SessionDriver;
} // namespace Zent::Discovery::Programs

namespace Zent::Discovery::Console
{
class Output;

/// Searches for all devices, or asks them once, and shows who was heard of.
class DiscoverCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    /// In the order in which they are shown.
    using Devices = std::vector<const Inventory::Device*>;

    Inventory::SearchOptions OptionsFor(CommandContext& context) const;
    bool Search(Programs::SessionDriver& driver, CommandContext& context) const;
    Devices Chosen(Programs::SessionDriver& driver) const;
    ExitStatus Conclude(const Programs::SessionDriver& driver, std::size_t shown, CommandContext& context) const;

    /// Shows the devices with marks where they differ from before.
    void ShowSince(const Inventory::DeviceList& before, const Programs::SessionDriver& driver, Output& output) const;

    bool once = false;
    bool noSweep = false;
    std::size_t expectedDevices = 0; // among those that the selection accepts; 0 when their number is unknown
    std::vector<Inventory::Network> also;
    std::string summaryFile; // its UTF-8 path; empty for none
    std::string sinceFile;   // the same
    Inventory::DeviceSelection selection{&TerminalText::Plain};
};
} // namespace Zent::Discovery::Console
