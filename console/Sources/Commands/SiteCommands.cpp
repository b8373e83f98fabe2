#include "Commands/SiteCommands.h"

#include "Commands/CommandContext.h"
#include "Commands/SharedOptions.h"
#include "Commands/SiteFileReader.h"
#include "Commands/SiteSearch.h"
#include "Show/Output.h"
#include "Text/TextFile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <sstream>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::SiteDeviation;
using Zent::Discovery::Inventory::SiteFile;

namespace Zent::Discovery::Console
{
namespace
{
using Deviations = std::vector<SiteDeviation>;
using Kind = SiteDeviation::DeviationKind;

void AddFile(CLI::App& command, std::string& file)
{
    command.add_option("FILE", file, "written with: site export FILE")->required()->type_name("");
}

std::size_t Count(const Deviations& deviations, Kind kind)
{
    return static_cast<std::size_t>(std::ranges::count(deviations, kind, &SiteDeviation::Kind));
}

void PrintRows(const SiteDeviation& deviation, Output& output)
{
    const auto print = [&](const std::string& property, const std::string& found, const std::string& wanted) {
        output.PrintRow({"deviation", "name", "mac", "ip", "property", "found", "wanted"},
                        {deviation.KindName(), deviation.HostName(), deviation.MACAddress(), deviation.IPAddress(),
                         property, found, wanted});
    };
    for (const auto& each : deviation.Properties)
    {
        print(each.Property, each.Before.value_or(""), each.After.value_or(""));
    }
    if (deviation.Properties.empty())
    {
        print("", "", "");
    }
}

void Show(const Deviations& deviations, Output& output)
{
    TextTable table({{"DEVIATION"}, {"HOST NAME", 0, 40}, {"MAC", 0, 17}, {"IP", 0, 15}});
    for (const SiteDeviation& each : deviations)
    {
        if (output.IsJson())
        {
            output.PrintLine(TerminalText::Json(each.ToJson()));
            continue;
        }
        if (output.IsCsv())
        {
            PrintRows(each, output);
            continue;
        }
        static constexpr std::array Looks = {Style::Left, Style::Appeared, Style::Changed};
        table.AddRow({each.KindName(), each.HostName(), each.MACAddress(), each.IPAddress()},
                     Looks[static_cast<std::size_t>(each.Kind)]);
        for (const auto& difference : each.Properties)
        {
            table.AddNote(difference.ToString());
        }
    }
    if (!deviations.empty() && !output.IsJson() && !output.IsCsv())
    {
        output.Show(table);
    }
}
} // namespace

CLI::App& SiteExportCommand::AddTo(CLI::App& parent)
{
    CLI::App& command = *parent.add_subcommand("export", "write names and addresses of all devices into a site file");
    command.add_option("FILE", file, "the file to make; - prints it")->required()->type_name("");
    SharedOptions::AddSelection(command, selection);
    return command;
}

ExitStatus SiteExportCommand::Run(CommandContext& context)
{
    SiteSearch search(context);
    const ExitStatus status = search.Run();
    if (status != ExitStatus::Success && status != ExitStatus::Incomplete)
    {
        return status;
    }
    const std::vector<const Device*> devices = selection.Of(search.Devices(), std::chrono::system_clock::now());
    if (devices.empty())
    {
        context.Out().Complain("devices found, but none that --filter accepts; nothing was written");
        return ExitStatus::NoAnswer;
    }
    std::istringstream lines(SiteFile::Of(devices).ToJson());
    std::string text;
    for (std::string line; std::getline(lines, line);)
    {
        text += TerminalText::Json(line) + "\n"; // which can be read again whatever devices send
    }
    if (file == TextFile::StandardInput)
    {
        text.pop_back();
        context.Out().PrintLine(text);
        return status;
    }
    TextFile::Write(file, text);
    const std::size_t count = devices.size();
    context.Out().Conclude(std::to_string(count) + (count == 1 ? " device" : " devices") + " written to " +
                           TerminalText::Plain(file));
    return status;
}

CLI::App& SiteDiffCommand::AddTo(CLI::App& parent)
{
    CLI::App& command =
        *parent.add_subcommand("diff", "tell which devices are missing, foreign or otherwise than a site file says");
    AddFile(command, file);
    return command;
}

ExitStatus SiteDiffCommand::Run(CommandContext& context)
{
    const SiteFile site = SiteFileReader::Read(file);
    SiteSearch search(context);
    const ExitStatus status = search.Run();
    if (status == ExitStatus::Interrupted)
    {
        return status;
    }
    const std::vector<const Device*> devices = search.Devices();
    const Deviations deviations = site.Compare(devices);
    Show(deviations, context.Out());
    if (status == ExitStatus::NoAnswer)
    {
        return status;
    }
    context.Out().Conclude(std::to_string(Count(deviations, Kind::Missing)) + " missing, " +
                           std::to_string(Count(deviations, Kind::Foreign)) + " foreign, " +
                           std::to_string(Count(deviations, Kind::Deviating)) + " deviating");
    return deviations.empty() ? status : ExitStatus::Different;
}
} // namespace Zent::Discovery::Console
