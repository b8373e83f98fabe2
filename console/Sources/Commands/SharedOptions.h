#pragma once

#include "Inventory/DeviceColumn.h"
#include "Inventory/DeviceSelection.h"

#include <string>

namespace Zent::Discovery::Console
{
class Arguments;

/// Options that several commands have. Reading the command line fills their targets, which must outlive it.
class SharedOptions final
{
public:
    SharedOptions() = delete;

    /// What is wrong with an address of that kind, with one that is right; empty for nothing.
    static std::string WrongWithMAC(const std::string& text);
    static std::string WrongWithIP(const std::string& text);

    /// Lets the user choose which devices the command shows, and in which order. Help names those columns.
    static void AddSelection(Arguments& arguments,
                             Inventory::DeviceSelection& target,
                             const std::string& columns = Inventory::DeviceColumn::Names("age"));
};
} // namespace Zent::Discovery::Console
