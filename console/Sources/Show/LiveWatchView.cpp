#include "Show/LiveWatchView.h"

#include "Inventory/DeviceTable.h"
#include "Show/EventText.h"
#include "Terminal/HostPlatform.h"
#include "Text/TerminalText.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <span>
#include <unordered_set>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Discovery::Inventory::DeviceTable;
using Zent::Discovery::Inventory::Event;

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
constexpr std::chrono::minutes TimeAfterBye{1}; // for which a device that has left is still shown

std::string Counted(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}
} // namespace

LiveWatchView::LiveWatchView(std::ostream& out,
                             const Terminal& terminal,
                             Output& output,
                             const DeviceSelection& selection,
                             const SiteState* site,
                             bool asks,
                             std::function<void()> onKey)
    : out(out)
    , terminal(terminal)
    , output(output)
    , selection(selection)
    , site(site)
    , asks(asks)
    , keyboard([this, onKey = std::move(onKey)](Keyboard::Key key) {
        {
            const Programs::Lock guard(keyLock);
            keys.push_back(key);
        }
        onKey();
    })
{
    out << EnterScreen << std::flush;
    Terminal::RestoreWhenSuspended(LeaveScreenText, EnterScreen);
}

LiveWatchView::~LiveWatchView()
{
    LeaveScreen();
}

bool LiveWatchView::Show(const DeviceMessage& /*message*/)
{
    return out.good(); // the table shows what has come of it
}

void LiveWatchView::Tell(const Event& event)
{
    const TimePoint now = std::chrono::system_clock::now();
    if (event.Subject != nullptr && !selection.Accepts(*event.Subject, now))
    {
        return;
    }
    for (EventText& each : EventText::Of(event))
    {
        if (event.Subject != nullptr)
        {
            latest.insert_or_assign(event.Subject->MainInterface().MACAddress, Highlight{now, each.Look});
        }
        Keep({now, std::move(each.Text), each.Look});
    }
}

void LiveWatchView::Note(const EventText& text)
{
    Keep({std::chrono::system_clock::now(), text.Text, text.Look});
}

bool LiveWatchView::Refresh(const DeviceTable& devices)
{
    keyboard.Renew();
    const TimePoint now = std::chrono::system_clock::now();
    std::erase_if(latest, [now](const auto& each) { return each.second.Time + HighlightTime < now; });

    const Terminal::Dimensions size = terminal.Size();
    const std::size_t width = size.Width - 1; // a character in the last column leaves the cursor in no certain place
    const std::size_t newsCount = std::min(news.size(), size.Height / 4);
    const std::size_t space = std::max(size.Height, LinesAroundRows + newsCount + 1) - LinesAroundRows - newsCount;

    const Rows rows = Chosen(devices, now);
    if (!Scroll(rows.size(), space))
    {
        return false;
    }
    std::vector<std::string> lines = {TerminalText::Shorten(Headline(devices, rows.size(), now), width), ""};
    std::ranges::move(TableLines(rows, space, width, now), std::back_inserter(lines));
    if (rows.empty())
    {
        lines.back() = TerminalText::Shorten(NothingText(devices), width);
    }
    lines.emplace_back();
    std::ranges::move(NewsLines(newsCount, width), std::back_inserter(lines));
    lines.resize(std::min(lines.size(), size.Height));
    Draw(lines);
    return true;
}

void LiveWatchView::Complain(const std::string& text)
{
    Keep({std::chrono::system_clock::now(), text, Style::Left});
}

void LiveWatchView::End(const DeviceTable& devices)
{
    LeaveScreen();
    const TimePoint now = std::chrono::system_clock::now();
    const Rows rows = Chosen(devices, now);
    if (!rows.empty())
    {
        output.Show(TableOf(rows, now));
    }
}

void LiveWatchView::Keep(News item)
{
    item.Text = TerminalText::Shorten(TerminalText::Plain(item.Text), MaximumNewsWidth);
    news.push_back(std::move(item));
    if (news.size() > MaximumNews)
    {
        news.pop_front();
    }
}

/// The rows that the user wants to see, in that order.
LiveWatchView::Rows LiveWatchView::Chosen(const DeviceTable& devices, TimePoint now) const
{
    std::unordered_map<const Device*, const DeviceRow*> rowOf;
    std::vector<const Device*> all;
    std::unordered_set<std::string> shown;
    for (const DeviceRow* row : devices.Rows())
    {
        if (row->Condition != DeviceRow::RowState::Left || row->Latest->Message.Received + TimeAfterBye > now)
        {
            rowOf.emplace(row->Latest.get(), row);
            all.push_back(row->Latest.get());
            shown.insert(row->Latest->MainInterface().MACAddress);
        }
    }
    for (const DeviceRow& row : site == nullptr ? std::span<const DeviceRow>() : site->Missing())
    {
        if (!shown.contains(row.Latest->MainInterface().MACAddress))
        {
            rowOf.emplace(row.Latest.get(), &row);
            all.push_back(row.Latest.get());
        }
    }
    Rows rows;
    std::ranges::transform(selection.Of(std::move(all), now), std::back_inserter(rows),
                           [&rowOf](const Device* each) { return rowOf.at(each); });
    return rows;
}

Style LiveWatchView::LookOf(const DeviceRow& row, TimePoint now) const
{
    switch (row.State())
    {
    case DeviceRow::RowState::Gone:
    case DeviceRow::RowState::Left:
    case DeviceRow::RowState::Flapping:
        return Style::Left;
    case DeviceRow::RowState::Stale:
    case DeviceRow::RowState::Asked:
        return Style::Faint;
    default:
        if (site != nullptr && site->NameOf(row) != nullptr)
        {
            return Style::Changed;
        }
        const auto found = latest.find(row.Latest->MainInterface().MACAddress);
        return found == latest.end() || found->second.Time + HighlightTime < now ? Style::Plain : found->second.Look;
    }
}

const char* LiveWatchView::NameOf(const DeviceRow& row) const
{
    const char* const name = site == nullptr ? nullptr : site->NameOf(row);
    return name == nullptr ? row.StateName() : name;
}

DeviceTextTable LiveWatchView::TableOf(const Rows& rows, TimePoint now) const
{
    DeviceTextTable table = DeviceTextTable::WithStates(now);
    for (const DeviceRow* row : rows)
    {
        table.Add(*row->Latest, LookOf(*row, now), NameOf(*row));
    }
    return table;
}

/// Moves the window of rows as the keys say. False when one of them ends the view.
bool LiveWatchView::Scroll(std::size_t rows, std::size_t space)
{
    const Programs::Lock guard(keyLock);
    const std::size_t shown = rows > space ? space - 1 : rows; // a line tells of the hidden ones
    const std::size_t last = rows - shown;
    for (const Keyboard::Key key : std::exchange(keys, {}))
    {
        switch (key)
        {
        case Keyboard::Key::Up:
            top -= std::min<std::size_t>(top, 1);
            break;
        case Keyboard::Key::Down:
            ++top;
            break;
        case Keyboard::Key::PageUp:
            top -= std::min(top, shown);
            break;
        case Keyboard::Key::PageDown:
            top += shown;
            break;
        case Keyboard::Key::Home:
            top = 0;
            break;
        case Keyboard::Key::End:
            top = last;
            break;
        case Keyboard::Key::Quit:
            return false;
        }
        top = std::min(top, last);
    }
    top = std::min(top, last);
    return true;
}

/// The titles and as many rows as there is space for.
std::vector<std::string> LiveWatchView::TableLines(const Rows& rows,
                                                   std::size_t space,
                                                   std::size_t width,
                                                   TimePoint now) const
{
    const std::size_t shown = rows.size() > space ? space - 1 : rows.size();
    const auto first = rows.begin() + static_cast<std::ptrdiff_t>(top);
    std::vector<std::string> lines =
        TableOf({first, first + static_cast<std::ptrdiff_t>(shown)}, now).Lines(output.OutColours(), width);
    if (shown < rows.size())
    {
        const std::size_t below = rows.size() - top - shown;
        const std::string above = top == 0 ? "..." : "... " + std::to_string(top) + " above";
        const std::string rest = below == 0 ? "" : " and " + std::to_string(below) + " more";
        lines.push_back(TerminalText::Shorten(above + rest, width));
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

std::string LiveWatchView::Headline(const DeviceTable& devices, std::size_t shown, TimePoint now) const
{
    using State = DeviceRow::RowState;
    std::string text = HostPlatform::TimeOfDay(now) + "  " + Counted(devices.Size(), "device");
    const std::vector<const DeviceRow*> rows = devices.Rows();
    for (const auto& [state, name] : {std::pair(State::Left, "left"), std::pair(State::Gone, "gone")})
    {
        const auto count = std::ranges::count(rows, state, &DeviceRow::Condition);
        text += count > 0 ? ", " + std::to_string(count) + " " + name : "";
    }
    text += site == nullptr || site->Summary().empty() ? "" : "; of the site " + site->Summary();
    text += shown < devices.Size() ? ", " + std::to_string(shown) + " shown" : "";
    return text + "  (q ends)";
}

std::string LiveWatchView::NothingText(const DeviceTable& devices) const
{
    return devices.Size() > 0 ? "No device to show."
           : asks             ? "No device has answered yet."
                              : "No message yet; nobody is asked.";
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
