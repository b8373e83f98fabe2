#include "Commands/DifferenceReport.h"

#include "Json/JSONStringer.h"
#include "Show/DeviceCsv.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <cctype>
#include <chrono>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceDifferences;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
namespace
{
void AddMember(JSONStringer& stringer, const char* key, const std::optional<std::string>& value)
{
    if (value)
    {
        stringer.Key(key);
        stringer.Value(std::string_view(*value));
    }
}

/// As members of a document.
std::string JsonOf(const std::vector<DeviceDifferences::Difference>& differences)
{
    JSONStringer stringer;
    stringer.Array();
    for (const DeviceDifferences::Difference& difference : differences)
    {
        stringer.Object();
        AddMember(stringer, "Property", difference.Property);
        AddMember(stringer, "Before", difference.Before);
        AddMember(stringer, "After", difference.After);
        stringer.EndObject();
    }
    stringer.EndArray();
    return R"(,"Differences":)" + TerminalText::Json(stringer.ToString().View());
}

/// The name of a change in documents.
std::string Capitalized(std::string word)
{
    word.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(word.front())));
    return word;
}
} // namespace

DifferenceReport::DifferenceReport(Output& output, const Words& words, Scope scope)
    : output(output)
    , words(words)
    , scope(scope)
{
}

DifferenceReport::Counts DifferenceReport::Compare(const DeviceList& before,
                                                   const DeviceList& after,
                                                   const DeviceSelection& selection)
{
    Counts counts;
    const auto now = std::chrono::system_clock::now();
    for (const Device* device : selection.Of(after.Devices(), now))
    {
        const Device* const former = before.Find(*device);
        if (former == nullptr)
        {
            ++counts.Appeared;
            Tell(*device, words.Appeared, Style::Appeared, {});
            continue;
        }
        const Differences differences = DeviceDifferences::Between(*former, *device);
        ++(differences.empty() ? counts.Same : counts.Changed);
        if (!differences.empty())
        {
            Tell(*device, words.Changed, Style::Changed, differences);
        }
        else if (scope == Scope::All)
        {
            Tell(*device, "", Style::Plain, {});
        }
    }
    for (const Device* device : selection.Of(before.Devices(), now))
    {
        if (after.Find(*device) == nullptr)
        {
            ++counts.Left;
            Tell(*device, words.Left, Style::Left, {});
        }
    }
    if (rows > 0)
    {
        output.Show(table);
    }
    return counts;
}

void DifferenceReport::Tell(const Device& device, const std::string& change, Style look, const Differences& differences)
{
    if (output.IsJson())
    {
        Print(device, change, differences);
        return;
    }
    if (output.IsCsv())
    {
        PrintRows(device, change, differences);
        return;
    }
    ++rows;
    table.Add(device, look, change);
    for (const DeviceDifferences::Difference& difference : differences)
    {
        table.AddNote(difference.ToString());
    }
}

void DifferenceReport::Print(const Device& device, const std::string& change, const Differences& differences)
{
    std::string members = change.empty() ? "" : R"("Change":")" + Capitalized(change) + '"';
    members += differences.empty() ? "" : JsonOf(differences);
    if (scope == Scope::All)
    {
        members += (members.empty() ? "" : ",") + Output::MembersOf(device);
    }
    output.PrintDocument(members, device);
}

/// One for each difference, or one without.
void DifferenceReport::PrintRows(const Device& device, const std::string& change, const Differences& differences)
{
    std::vector<std::string> titles = DeviceCsv::Titles();
    titles.insert(titles.begin(), "change");
    titles.insert(titles.end(), {"property", "before", "after"});
    std::vector<std::string> cells = DeviceCsv::Cells(device);
    cells.insert(cells.begin(), change);
    const std::size_t size = cells.size();
    for (std::size_t i = 0; i < std::max<std::size_t>(differences.size(), 1); ++i)
    {
        cells.resize(size);
        const DeviceDifferences::Difference none;
        const DeviceDifferences::Difference& each = differences.empty() ? none : differences[i];
        cells.insert(cells.end(), {each.Property, each.Before.value_or(""), each.After.value_or("")});
        output.PrintRow(titles, cells);
    }
}
} // namespace Zent::Discovery::Console
