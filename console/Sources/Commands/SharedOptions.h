#pragma once

#include "Commands/Arguments.h"

#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// Options that several commands have. Reading the command line fills their targets, which must outlive it.
class SharedOptions final
{
public:
    SharedOptions() = delete;

    /// What is wrong with an address of that kind, with one that is right; empty for nothing.
    static std::string WrongWithMAC(const std::string& text);
    static std::string WrongWithIP(const std::string& text);

    /// Lets the user choose which rows the command shows, and in which order: an Inventory::Selection. Help names its
    /// columns but one, and says what the rows are.
    template <class TSelection>
    static void AddSelection(Arguments& arguments,
                             TSelection& target,
                             std::string_view without = "age",
                             const std::string& rows = "devices")
    {
        AddSelection(
            arguments, [&target](const std::string& text) { target.AddOrder(text); },
            [&target](const std::string& text) { target.AddFilter(text); }, target.ColumnNames(without), rows);
    }

private:
    static void AddSelection(Arguments& arguments,
                             const Arguments::Reader& addOrder,
                             const Arguments::Reader& addFilter,
                             const std::string& columns,
                             const std::string& rows);
};
} // namespace Zent::Discovery::Console
