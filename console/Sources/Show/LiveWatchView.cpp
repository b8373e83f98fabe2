#include "Show/LiveWatchView.h"

#include "Inventory/DeviceDifferences.h"
#include "Terminal/HostPlatform.h"
#include "Text/TerminalText.h"

#include <algorithm>
#include <ostream>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceDifferences;
using Zent::Discovery::Inventory::DeviceList;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceSelection;

namespace Zent::Discovery::Console
{
namespace
{
// The other screen without a cursor, and back.
const char EnterScreen[] = "\x1B[?1049h\x1B[?25l\x1B[2J";
const char LeaveScreenText[] = "\x1B[?25h\x1B[?1049l";

constexpr std::size_t MaximumNews = 6;
constexpr std::size_t MaximumNewsWidth = 400;
constexpr std::size_t LinesAroundRows = 4; // the headline, the titles and two empty ones
constexpr std::chrono::seconds HighlightTime{5};

bool HasLeft(const Device& device)
{
    return device.Message.Kind == DeviceMessage::MessageKind::Bye;
}

std::string Counted(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}
} // namespace

LiveWatchView::LiveWatchView(
    std::ostream& out, const Terminal& terminal, Output& output, const DeviceSelection& selection, bool asks)
    : out(out)
    , terminal(terminal)
    , output(output)
    , selection(selection)
    , asks(asks)
{
    out << EnterScreen << std::flush;
    Terminal::RestoreWhenSuspended(LeaveScreenText, EnterScreen);
}

LiveWatchView::~LiveWatchView()
{
    LeaveScreen();
}

bool LiveWatchView::Show(const Device& device, const Device* before)
{
    if (!selection.Accepts(device, device.Message.Received))
    {
        return out.good();
    }
    if (HasLeft(device))
    {
        if (before == nullptr || !HasLeft(*before))
        {
            NoteDevice(device, "left", Style::Left);
        }
    }
    else if (before == nullptr || HasLeft(*before))
    {
        NoteDevice(device, before == nullptr ? "appeared" : "came back", Style::Appeared);
    }
    else
    {
        for (const DeviceDifferences::Difference& difference : DeviceDifferences::Between(*before, device))
        {
            NoteDevice(device, difference.ToString(), Style::Changed);
        }
    }
    return out.good();
}

void LiveWatchView::Refresh(const DeviceList& inventory)
{
    const TimePoint now = std::chrono::system_clock::now();
    std::erase_if(latest, [now](const auto& each) { return each.second.Time + HighlightTime < now; });

    const Terminal::Dimensions size = terminal.Size();
    const std::size_t width = size.Width - 1; // a character in the last column leaves the cursor in no certain place
    const std::size_t newsCount = std::min(news.size(), size.Height / 4);
    const std::size_t space = std::max(size.Height, LinesAroundRows + newsCount + 1) - LinesAroundRows - newsCount;

    const std::vector<const Device*> devices = selection.Of(inventory.Devices(), now);
    std::vector<std::string> lines = {TerminalText::Shorten(Headline(inventory, devices.size(), now), width), ""};
    std::ranges::move(TableLines(devices, space, width, now), std::back_inserter(lines));
    if (devices.empty())
    {
        lines.back() = TerminalText::Shorten(NothingText(inventory), width);
    }
    lines.emplace_back();
    std::ranges::move(NewsLines(newsCount, width), std::back_inserter(lines));
    lines.resize(std::min(lines.size(), size.Height));
    Draw(lines);
}

void LiveWatchView::Complain(const std::string& text)
{
    Note({std::chrono::system_clock::now(), text, Style::Left});
}

void LiveWatchView::End(const DeviceList& inventory)
{
    LeaveScreen();
    const TimePoint now = std::chrono::system_clock::now();
    const std::vector<const Device*> devices = selection.Of(inventory.Devices(), now);
    if (!devices.empty())
    {
        output.Show(TableOf(devices, now));
    }
}

void LiveWatchView::Note(News item)
{
    item.Text = TerminalText::Shorten(TerminalText::Plain(item.Text), MaximumNewsWidth);
    news.push_back(std::move(item));
    if (news.size() > MaximumNews)
    {
        news.pop_front();
    }
}

void LiveWatchView::NoteDevice(const Device& device, const std::string& what, Style look)
{
    Note({device.Message.Received, device.HostName + " (" + device.MainInterface().IPAddress + ") " + what, look});
    latest.insert_or_assign(device.MainInterface().MACAddress, Event{device.Message.Received, look});
}

Style LiveWatchView::LookOf(const Device& device, TimePoint now) const
{
    if (HasLeft(device))
    {
        return Style::Left;
    }
    const auto found = latest.find(device.MainInterface().MACAddress);
    return found == latest.end() || found->second.Time + HighlightTime < now ? Style::Plain : found->second.Look;
}

DeviceTextTable LiveWatchView::TableOf(const std::vector<const Device*>& devices, TimePoint now) const
{
    DeviceTextTable table = DeviceTextTable::WithAges(now);
    for (const Device* device : devices)
    {
        table.Add(*device, LookOf(*device, now));
    }
    return table;
}

/// The titles and as many rows as there is space for.
std::vector<std::string> LiveWatchView::TableLines(const std::vector<const Device*>& devices,
                                                   std::size_t space,
                                                   std::size_t width,
                                                   TimePoint now) const
{
    const std::size_t hidden = devices.size() > space ? devices.size() - space + 1 : 0;
    std::vector<std::string> lines =
        TableOf({devices.begin(), devices.end() - static_cast<std::ptrdiff_t>(hidden)}, now)
            .Lines(output.OutColours(), width);
    if (hidden > 0)
    {
        lines.push_back("... and " + std::to_string(hidden) + " more");
    }
    return lines;
}

std::vector<std::string> LiveWatchView::NewsLines(std::size_t count, std::size_t width) const
{
    std::vector<std::string> lines;
    for (std::size_t i = news.size() - count; i < news.size(); ++i)
    {
        const std::string text = HostPlatform::TimeOfDay(news[i].Time) + "  " + news[i].Text;
        lines.push_back(output.OutColours().Paint(TerminalText::Shorten(text, width), news[i].Look));
    }
    return lines;
}

std::string LiveWatchView::Headline(const DeviceList& inventory, std::size_t shown, TimePoint now) const
{
    const std::size_t known = inventory.Devices().size();
    const auto left = std::ranges::count_if(inventory.Devices(), &HasLeft);
    std::string text = HostPlatform::TimeOfDay(now) + "  " + Counted(known, "device");
    text += left > 0 ? ", " + std::to_string(left) + " left" : "";
    text += shown < known ? ", " + std::to_string(shown) + " shown" : "";
    return text + "  (Ctrl-C ends)";
}

std::string LiveWatchView::NothingText(const DeviceList& inventory) const
{
    if (!inventory.Devices().empty())
    {
        return "None that --filter accepts.";
    }
    return asks ? "No device has answered yet."
                : "No message yet. With --every 10 all devices are asked every 10 seconds.";
}

void LiveWatchView::Draw(const std::vector<std::string>& lines)
{
    std::string frame = "\x1B[H";
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        frame += (i == 0 ? "" : "\r\n") + lines[i] + "\x1B[K";
    }
    frame += "\x1B[J";
    if (frame != drawn)
    {
        out << frame << std::flush;
        drawn = std::move(frame);
    }
}

void LiveWatchView::LeaveScreen()
{
    if (std::exchange(isOnScreen, false))
    {
        Terminal::RestoreWhenSuspended(nullptr, nullptr);
        out << LeaveScreenText << std::flush;
    }
}
} // namespace Zent::Discovery::Console
