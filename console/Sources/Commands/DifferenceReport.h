#pragma once

#include "Inventory/DeviceDifferences.h"
#include "Inventory/DeviceList.h"
#include "Inventory/DeviceSelection.h"
#include "Show/DeviceTextTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
class Output;

/// Tells what has become of the devices of an earlier result: as a table, as documents or as comma-separated values.
class DifferenceReport final
{
public:
    /// What is said of devices.
    struct Words
    {
        const char* Appeared; // that were not there before
        const char* Changed;
        const char* Left; // that were there before, and no more
    };

    enum class Scope
    {
        Changes, // only devices of which there is something to say
        All      // the unchanged ones, too, and what each has said last
    };

    struct Counts
    {
        std::size_t Appeared = 0;
        std::size_t Left = 0;
        std::size_t Changed = 0;
        std::size_t Same = 0;
    };

    /// The output must outlive the report.
    DifferenceReport(Output& output, const Words& words, Scope scope);

    /// Shows the devices that the selection accepts, in its order, and the ones that have left at the end.
    Counts Compare(const Inventory::DeviceList& before,
                   const Inventory::DeviceList& after,
                   const Inventory::DeviceSelection& selection);

private:
    using Differences = std::vector<Inventory::DeviceDifferences::Difference>;

    void Tell(const Inventory::Device& device, const std::string& change, Style look, const Differences& differences);
    void Print(const Inventory::Device& device, const std::string& change, const Differences& differences);
    void PrintRows(const Inventory::Device& device, const std::string& change, const Differences& differences);

    Output& output;
    const Words words;
    const Scope scope;
    DeviceTextTable table = DeviceTextTable::Changes();
    std::size_t rows = 0; // of the table
};
} // namespace Zent::Discovery::Console
