#include "Output.h"

#include "HostPlatform.h"
#include "TerminalText.h"

#include <ostream>
#include <utility>

namespace Zent::Discovery::Console
{
Output::Output(std::ostream& out, std::ostream& errors, bool json)
    : out(out)
    , errors(errors)
    , json(json)
{
}

void Output::Show(const DeviceTable& table)
{
    if (!json)
    {
        table.Print(out);
        return;
    }
    for (const Device& device : table.Devices())
    {
        PrintDocument(device);
    }
}

void Output::Show(const Device& device)
{
    DeviceTable table;
    table.Add(device);
    Show(table);
}

bool Output::ShowNow(const Device& device)
{
    if (json)
    {
        PrintDocument(device);
    }
    else
    {
        if (!std::exchange(hasTitles, true))
        {
            out << "TIME      " << DeviceTable::Titles() << '\n';
        }
        out << HostPlatform::TimeOfDay() << "  " << DeviceTable::Row(device) << '\n';
    }
    out.flush();
    return out.good();
}

void Output::Complain(std::string_view text)
{
    errors << "discovery-console: " << TerminalText::Plain(text) << std::endl;
}

void Output::PrintDocument(const Device& device)
{
    // The library's document is a JSON object; the kind of message, which it does not hold, becomes its first member.
    const std::string document = TerminalText::Json(device.Message.Document);
    out << R"({"Message":")" << device.Message.KindName() << R"(",)" << std::string_view(document).substr(1) << '\n';
}
} // namespace Zent::Discovery::Console
