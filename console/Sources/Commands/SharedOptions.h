#pragma once

#include "Inventory/DeviceColumn.h"
#include "Inventory/DeviceSelection.h"

#include <chrono>
#include <optional>
#include <string>

namespace CLI
{
class App;
class Validator;
} // namespace CLI

namespace Zent::Discovery::Console
{
/// Options of one kind that several commands have. Reading the command line fills their targets, which must outlive it.
class SharedOptions final
{
public:
    SharedOptions() = delete;

    /// Refuses what is not a number in the range, both ends included, and says of what.
    static CLI::Validator Between(double minimum, double maximum, const std::string& unit);

    /// The same for whole numbers.
    static CLI::Validator Between(int minimum, int maximum, const std::string& unit);

    /// Refuse what is no address of that kind, and show one that is.
    static CLI::Validator MACAddress();
    static CLI::Validator IPAddress();

    /// A time of minimum to 86400 seconds.
    static void AddSeconds(CLI::App& command,
                           const std::string& name,
                           std::optional<std::chrono::milliseconds>& target,
                           const std::string& description,
                           double minimum);

    /// Lets the user choose which devices the command shows, and in which order. Help names those columns.
    static void AddSelection(CLI::App& command,
                             Inventory::DeviceSelection& target,
                             const std::string& columns = Inventory::DeviceColumn::Names("age"));
};
} // namespace Zent::Discovery::Console
