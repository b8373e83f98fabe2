#pragma once

#include "Inventory/DeviceRow.h"
#include "Inventory/DeviceSelection.h"
#include "Programs/Mutex.h"
#include "Show/DeviceTextTable.h"
#include "Show/IWatchView.h"
#include "Show/Output.h"
#include "Show/SiteState.h"
#include "Terminal/Keyboard.h"
#include "Terminal/Terminal.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

namespace Zent::Discovery::Console
{
/// Shows the devices in a table that fills a terminal and changes with them, and below it what happened last. Uses the
/// terminal's other screen, so that what the user had before is there again afterwards, and then prints the last state.
/// The user scrolls with the keys of the cursor, and ends with q.
class LiveWatchView final : public IWatchView
{
public:
    /// site is null when devices are compared with none. asks tells whether devices are asked for their signatures.
    /// onKey is called on a thread of the view when a key was pressed that Refresh will act on. All others must outlive
    /// the view.
    LiveWatchView(std::ostream& out,
                  const Terminal& terminal,
                  Output& output,
                  const Inventory::DeviceSelection& selection,
                  const SiteState* site,
                  bool asks,
                  std::function<void()> onKey);

    /// Leaves the other screen.
    ~LiveWatchView() override;

    LiveWatchView(const LiveWatchView&) = delete;
    LiveWatchView& operator=(const LiveWatchView&) = delete;

    bool Show(const Inventory::DeviceMessage& message) override;
    void Tell(const Inventory::Event& event) override;
    void Note(const EventText& text) override;
    bool Refresh(const Inventory::DeviceTable& devices) override;
    void Complain(const std::string& text) override;
    void End(const Inventory::DeviceTable& devices) override;

private:
    using TimePoint = Inventory::DeviceMessage::TimePoint;
    using Rows = std::vector<const Inventory::DeviceRow*>;

    /// A line about something that happened.
    struct News
    {
        TimePoint Time;
        std::string Text; // fit for a terminal
        Style Look;
    };

    /// What happened to a device, and how its row shows it.
    struct Highlight
    {
        TimePoint Time;
        Style Look;
    };

    /// The text may come from outside.
    void Keep(News item);
    const char* NameOf(const Inventory::DeviceRow& row) const;
    Rows Chosen(const Inventory::DeviceTable& devices, TimePoint now) const;
    Style LookOf(const Inventory::DeviceRow& row, TimePoint now) const;
    DeviceTextTable TableOf(const Rows& rows, TimePoint now) const;
    std::string Headline(const Inventory::DeviceTable& devices, std::size_t shown, TimePoint now) const;
    std::string NothingText(const Inventory::DeviceTable& devices) const;
    bool Scroll(std::size_t rows, std::size_t space);
    std::vector<std::string> TableLines(const Rows& rows, std::size_t space, std::size_t width, TimePoint now) const;
    std::vector<std::string> NewsLines(std::size_t count, std::size_t width) const;
    void Draw(const std::vector<std::string>& lines);
    void LeaveScreen();

    std::ostream& out;
    const Terminal& terminal;
    Output& output;
    const Inventory::DeviceSelection& selection;
    const SiteState* const site;
    const bool asks;
    std::deque<News> news;                             // the latest last
    std::unordered_map<std::string, Highlight> latest; // of devices that something has just happened to, by their MACs
    std::string drawn;                                 // what is on the screen
    std::size_t top = 0;                               // the first row that is shown
    bool isOnScreen = true;

    Programs::Mutex keyLock;
    std::deque<Keyboard::Key> keys NFX_GUARDED_BY(keyLock); // pressed and not yet acted on
    Keyboard keyboard;
};
} // namespace Zent::Discovery::Console
