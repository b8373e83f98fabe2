#pragma once

#include "Inventory/DeviceSelection.h"
#include "Show/IWatchView.h"
#include "Show/Output.h"
#include "Terminal/Terminal.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Shows the devices in a table that fills a terminal and changes with them, and below it what happened last. Uses the
/// terminal's other screen, so that what the user had before is there again afterwards, and then prints the last state.
class LiveWatchView final : public IWatchView
{
public:
    /// asks tells whether devices are asked for their signatures again and again. All others must outlive the view.
    LiveWatchView(std::ostream& out,
                  const Terminal& terminal,
                  Output& output,
                  const Inventory::DeviceSelection& selection,
                  bool asks);

    /// Leaves the other screen.
    ~LiveWatchView() override;

    LiveWatchView(const LiveWatchView&) = delete;
    LiveWatchView& operator=(const LiveWatchView&) = delete;

    bool Show(const Inventory::Device& device, const Inventory::Device* before) override;
    void Refresh(const Inventory::DeviceList& inventory) override;
    void Complain(const std::string& text) override;
    void End(const Inventory::DeviceList& inventory) override;

private:
    using TimePoint = Inventory::DeviceMessage::TimePoint;

    /// A line about something that happened.
    struct News
    {
        TimePoint Time;
        std::string Text; // fit for a terminal
        Style Look;
    };

    /// What happened to a device, and how its row shows it.
    struct Event
    {
        TimePoint Time;
        Style Look;
    };

    /// The text may come from outside.
    void Note(News item);
    void NoteDevice(const Inventory::Device& device, const std::string& what, Style look);
    Style LookOf(const Inventory::Device& device, TimePoint now) const;
    DeviceTextTable TableOf(const std::vector<const Inventory::Device*>& devices, TimePoint now) const;
    std::string Headline(const Inventory::DeviceList& inventory, std::size_t shown, TimePoint now) const;
    std::string NothingText(const Inventory::DeviceList& inventory) const;
    std::vector<std::string> TableLines(const std::vector<const Inventory::Device*>& devices,
                                        std::size_t space,
                                        std::size_t width,
                                        TimePoint now) const;
    std::vector<std::string> NewsLines(std::size_t count, std::size_t width) const;
    void Draw(const std::vector<std::string>& lines);
    void LeaveScreen();

    std::ostream& out;
    const Terminal& terminal;
    Output& output;
    const Inventory::DeviceSelection& selection;
    const bool asks;
    std::deque<News> news;               // the latest last
    std::map<std::string, Event> latest; // of the devices that something has just happened to, by their MAC addresses
    std::string drawn;                   // what is on the screen
    bool isOnScreen = true;
};
} // namespace Zent::Discovery::Console
