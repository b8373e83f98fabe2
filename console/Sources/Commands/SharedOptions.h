#pragma once

#include "Inventory/DeviceSelection.h"

#include <chrono>
#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace Zent::Discovery::Console
{
/// Options of one kind that several commands have. Reading the command line fills their targets, which must outlive it.
class SharedOptions final
{
public:
    SharedOptions() = delete;

    /// A time of minimum to 86400 seconds.
    static void AddSeconds(CLI::App& command,
                           const std::string& name,
                           std::optional<std::chrono::milliseconds>& target,
                           const std::string& description,
                           double minimum);

    /// Lets the user choose which devices the command shows, and in which order.
    static void AddSelection(CLI::App& command, Inventory::DeviceSelection& target);
};
} // namespace Zent::Discovery::Console
