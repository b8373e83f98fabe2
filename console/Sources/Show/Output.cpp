#include "Show/Output.h"

#include "Terminal/HostPlatform.h"
#include "Text/TerminalText.h"
#include "Text/TimeText.h"

#include <ostream>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;

namespace Zent::Discovery::Console
{
namespace
{
/// What a document says of the message, which the library's does not hold.
std::string MembersOf(const Device& device)
{
    const bool hasTime = device.Message.Received != DeviceMessage::TimePoint();
    return std::string(R"("Message":")") + device.Message.KindName() + '"' +
           (hasTime ? R"(,"Time":")" + TimeText::Utc(device.Message.Received) + '"' : "");
}
} // namespace

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

const Colours& Output::OutColours() const
{
    return outColours;
}

void Output::Show(const std::vector<const Device*>& devices)
{
    DeviceTextTable table = DeviceTextTable::Snapshot();
    for (const Device* device : devices)
    {
        if (settings.Json)
        {
            PrintDocument(MembersOf(*device), *device);
        }
        table.Add(*device);
    }
    if (!settings.Json)
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

bool Output::ShowNow(const Device& device)
{
    if (settings.Json)
    {
        PrintDocument(MembersOf(device), device);
    }
    else
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
    out.flush();
    return out.good();
}

void Output::PrintDocument(const std::string& members, const Device& device)
{
    // The library's document is a JSON object.
    PrintLine('{' + members + ',' + TerminalText::Json(device.Message.Document).substr(1));
}

void Output::PrintLine(const std::string& line)
{
    status.Clear();
    out << line << '\n';
}

void Output::ShowStatus(const std::string& text)
{
    status.Show(errorColours.Paint(text, Style::Faint));
}

void Output::Conclude(const std::string& text)
{
    status.Clear();
    if (!settings.Json)
    {
        out.flush(); // so that the sum stands below what it sums up
        errors << text << std::endl;
    }
}

void Output::Complain(std::string_view text)
{
    status.Clear();
    out.flush();
    errors << errorColours.Paint("discovery-console:", Style::Left) << ' ' << TerminalText::Plain(text) << std::endl;
}
} // namespace Zent::Discovery::Console
