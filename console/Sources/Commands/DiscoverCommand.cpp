#include "Commands/DiscoverCommand.h"

#include "Commands/AddressList.h"
#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Commands/DifferenceReport.h"
#include "Commands/InventoryReader.h"
#include "Commands/SearchProgress.h"
#include "Commands/SharedOptions.h"
#include "Inventory/Search.h"
#include "Programs/SessionDriver.h"
#include "Show/Output.h"
#include "Text/TextFile.h"

#include <chrono>
#include <exception>

using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::SearchOptions;
using Zent::Discovery::Inventory::SearchReport;
using Zent::Discovery::Programs::SessionDriver;
using namespace std::chrono_literals;

namespace Zent::Discovery::Console
{
namespace
{
constexpr std::chrono::milliseconds StatusInterval{100};
constexpr std::chrono::seconds UsualWait{10};
constexpr std::chrono::seconds UsualWaitOnce{2};
constexpr std::chrono::seconds AskEvery{2}; // for those who are still expected
} // namespace

CLI::App& DiscoverCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "discover", "find all devices, and tell whether they are all");
    arguments.AddFlag("--once", once, "ask a single time and show who answers within --wait, 2 seconds without it");
    arguments.AddCount("--expect", expectedDevices, "stop when so many devices have answered", 1, 100000, "devices");
    arguments.AddFlag("--no-sweep", noSweep, "never ask the addresses of the local networks one by one");
    arguments.AddRepeated(
        "--also", "IP[/PREFIX],@FILE",
        [this](const std::string& text) {
            const std::vector<Inventory::Network> list = AddressList::Parse(text);
            also.insert(also.end(), list.begin(), list.end());
            Inventory::Search::Check({.Also = also});
        },
        "ask these addresses one by one, too, such as those behind routers; may be repeated");
    arguments.Add("--summary", "FILE", summaryFile, "write what the search has come to as JSON");
    arguments.Add("--since", "FILE", sinceFile, "mark what is new, changed and missing since that result was saved");
    SharedOptions::AddSelection(arguments, selection);
    return arguments.Command();
}

ExitStatus DiscoverCommand::Run(CommandContext& context)
{
    std::optional<DeviceList> before;
    if (!sinceFile.empty())
    {
        before = InventoryReader::Read(sinceFile);
    }
    if (!summaryFile.empty())
    {
        TextFile::Write(summaryFile, ""); // a search whose result could not be written is not begun
    }
    if (also.empty() && !context.CanBroadcast())
    {
        return ExitStatus::NoAnswer;
    }
    Output& output = context.Out();
    SessionDriver driver(context.Session(), context.Messages(),
                         {.AskEvery = Inventory::Time(expectedDevices == 0 ? 0s : AskEvery)},
                         [&output](const std::string& text) { output.Complain(text); });
    const bool isInterrupted = !Search(driver, context);
    const SearchReport report = *driver.Session().SearchState();
    const Devices devices = Chosen(driver);
    if (before)
    {
        ShowSince(*before, driver, output);
    }
    else if (!devices.empty())
    {
        output.Show(devices);
    }
    if (!summaryFile.empty())
    {
        TextFile::Write(summaryFile, report.ToJson() + "\n");
    }
    return isInterrupted ? ExitStatus::Interrupted : Conclude(driver, devices.size(), context);
}

SearchOptions DiscoverCommand::OptionsFor(CommandContext& context) const
{
    SearchOptions options;
    options.Wait = context.Options().Wait.value_or(once ? UsualWaitOnce : UsualWait);
    options.Once = once;
    options.Sweep = !noSweep;
    options.Networks = context.Session().Interfaces().Addresses();
    options.Also = also;
    return options;
}

/// False when the user has interrupted it.
bool DiscoverCommand::Search(SessionDriver& driver, CommandContext& context) const
{
    const SearchOptions options = OptionsFor(context);
    Inventory::Session& session = driver.Session();
    session.StartSearch(options, driver.Now());
    const auto isExpecting = [&] {
        return expectedDevices > 0 && driver.Now() < options.Wait && Chosen(driver).size() < expectedDevices;
    };
    while (!session.SearchState()->IsOver || isExpecting())
    {
        context.Out().ShowStatus(SearchProgress::Text(driver, options.Wait));
        if (!driver.Run(StatusInterval))
        {
            return false;
        }
        if (expectedDevices != 0 && Chosen(driver).size() >= expectedDevices)
        {
            session.StopSearch(driver.Now());
        }
    }
    return true;
}

DiscoverCommand::Devices DiscoverCommand::Chosen(SessionDriver& driver) const
{
    Devices devices;
    for (const DeviceRow* row : driver.Session().Devices().Rows())
    {
        devices.push_back(row->Latest.get());
    }
    return selection.Of(devices, std::chrono::system_clock::now());
}

void DiscoverCommand::ShowSince(const DeviceList& before, const SessionDriver& driver, Output& output) const
{
    DeviceList after;
    for (const DeviceRow* row : driver.Session().Devices().Rows())
    {
        after.Add(*row->Latest);
    }
    const DifferenceReport::Counts counts =
        DifferenceReport(output, {"new", "changed", "missing"}, DifferenceReport::Scope::All)
            .Compare(before, after, selection);
    output.Conclude("since " + TerminalText::Plain(sinceFile) + ": " + std::to_string(counts.Appeared) + " new, " +
                    std::to_string(counts.Changed) + " changed, " + std::to_string(counts.Left) + " missing, " +
                    std::to_string(counts.Same) + " unchanged");
}

ExitStatus DiscoverCommand::Conclude(const SessionDriver& driver, std::size_t shown, CommandContext& context) const
{
    const SearchReport& report = *driver.Session().SearchState();
    Output& output = context.Out();
    const std::size_t found = driver.Session().Devices().Size();
    if (found == 0)
    {
        SearchProgress::ComplainAboutSilence(driver, context);
        return ExitStatus::NoAnswer;
    }
    if (shown < expectedDevices)
    {
        output.Complain("only " + std::to_string(shown) + " of " + std::to_string(expectedDevices) + " devices found");
        return ExitStatus::NoAnswer;
    }
    if (shown == 0)
    {
        output.Complain(SearchProgress::Counted(found) + " found, but none that --filter accepts");
        return ExitStatus::NoAnswer;
    }
    const bool isSearch = !once && expectedDevices == 0;
    output.Conclude((isSearch ? report.ToString() : SearchProgress::Counted(found) + " found") +
                    (shown < found ? "; " + std::to_string(shown) + " shown" : ""));
    if (isSearch && !report.Complete)
    {
        output.Complain("the search is incomplete: there may be more devices; --wait gives it more time");
        return ExitStatus::Incomplete;
    }
    return ExitStatus::Success;
}
} // namespace Zent::Discovery::Console
