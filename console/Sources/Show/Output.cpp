#include "Show/Output.h"

#include "Programs/TimeText.h"
#include "Show/DeviceCsv.h"
#include "Terminal/HostPlatform.h"
#include "Text/CsvText.h"
#include "Text/TerminalText.h"

#include <cerrno>
#include <ostream>
#include <system_error>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Programs::TimeText;

namespace Zent::Discovery::Console
{
Output::Output(std::ostream& out, std::ostream& errors, const Settings& settings)
    : out(out)
    , errors(errors)
    , settings(settings)
    , outColours(settings.HasColours && settings.OutIsTerminal)
    , errorColours(settings.HasColours && settings.ErrorsAreTerminal)
    , status(errors, settings.ErrorsAreTerminal)
{
}

bool Output::IsJson() const
{
    return settings.Json;
}

bool Output::IsCsv() const
{
    return settings.Csv;
}

const Colours& Output::OutColours() const
{
    return outColours;
}

void Output::Show(const std::vector<const Device*>& devices)
{
    DeviceTextTable table = DeviceTextTable::Snapshot();
    for (const Device* device : devices)
    {
        if (!PrintRecord(*device))
        {
            table.Add(*device);
        }
    }
    if (settings.Csv)
    {
        PrintTitles(DeviceCsv::Titles());
    }
    else if (!settings.Json)
    {
        Show(table);
    }
}

void Output::Show(const Device& device)
{
    Show(std::vector{&device});
}

void Output::Show(const DeviceTextTable& table)
{
    for (const std::string& line : table.Lines(outColours, settings.Width))
    {
        PrintLine(line);
    }
}

void Output::Show(const TextTable& table)
{
    for (const std::string& line : table.Lines(outColours, settings.Width))
    {
        PrintLine(line);
    }
}

bool Output::ShowNow(const Device& device)
{
    if (!PrintRecord(device))
    {
        DeviceTextTable table = DeviceTextTable::Stream();
        table.Add(device, Style::Plain, HostPlatform::TimeOfDay(device.Message.Received));
        const std::vector<std::string> lines = table.Lines(outColours);
        if (!std::exchange(hasTitles, true))
        {
            PrintLine(lines.front());
        }
        PrintLine(lines.back());
    }
    return Flush();
}

std::string Output::MembersOf(const Device& device)
{
    const bool hasTime = device.Message.Received != DeviceMessage::TimePoint();
    return std::string(R"("Message":")") + device.Message.KindName() + '"' +
           (hasTime ? R"(,"Time":")" + TimeText::Utc(device.Message.Received) + '"' : "");
}

std::string Output::DocumentOf(const std::string& members, const Device& device)
{
    // The library's document is a JSON object.
    return '{' + members + (members.empty() ? "" : ",") + TerminalText::Json(device.Message.Document).substr(1);
}

void Output::PrintDocument(const std::string& members, const Device& device)
{
    PrintLine(DocumentOf(members, device));
}

void Output::PrintRow(const std::vector<std::string>& titles, const std::vector<std::string>& cells)
{
    PrintTitles(titles);
    PrintLine(CsvText::Row(cells));
}

void Output::PrintLine(const std::string& line)
{
    status.Clear();
    out << line << '\n';
    NoteFailure();
}

bool Output::Finish()
{
    if (Flush())
    {
        return true;
    }
    if (writeError != EPIPE)
    {
        Complain("cannot write to standard output: " + std::generic_category().message(writeError));
    }
    return false;
}

void Output::ShowStatus(const std::string& text)
{
    status.Show(errorColours.Paint(text, Style::Faint));
}

void Output::Ask(const std::string& question)
{
    status.Clear();
    out.flush();
    errors << question << std::flush;
}

void Output::Conclude(const std::string& text)
{
    status.Clear();
    if (!settings.Json && !settings.Csv)
    {
        Flush(); // so that the sum stands below what it sums up
        errors << text << std::endl;
    }
}

void Output::Complain(std::string_view text)
{
    status.Clear();
    Flush();
    errors << errorColours.Paint(settings.Program + std::string(":"), Style::Left) << ' ' << TerminalText::Plain(text)
           << std::endl;
}

/// In the form that programs read; false when people want a table.
bool Output::PrintRecord(const Device& device)
{
    if (settings.Json)
    {
        PrintDocument(MembersOf(device), device);
    }
    else if (settings.Csv)
    {
        PrintRow(DeviceCsv::Titles(), DeviceCsv::Cells(device));
    }
    return settings.Json || settings.Csv;
}

void Output::PrintTitles(const std::vector<std::string>& titles)
{
    if (!std::exchange(hasTitles, true))
    {
        PrintLine(CsvText::Row(titles));
    }
}

/// False when something could not be written.
bool Output::Flush()
{
    out.flush();
    NoteFailure();
    return out.good();
}

/// To be called behind whatever writes: errno tells the reason only then.
void Output::NoteFailure()
{
    if (!out.good() && writeError == 0)
    {
        writeError = errno == 0 ? EIO : errno;
    }
}
} // namespace Zent::Discovery::Console
