#pragma once

#include "Fleet/DeviceRecord.h"
#include "Fleet/SiteEvent.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zent::Discovery::Page
{
/// A figure for those who watch over the program itself.
struct Metric
{
    enum class MetricKind
    {
        Counter, // never falls
        Gauge
    };

    using Label = std::pair<std::string, std::string>; // never with a value for each device

    std::string Name; // in Prometheus' form; metrics of one name stand together
    std::string Help;
    MetricKind Kind;
    double Value;
    std::optional<Label> Which = {};
};

/// What viewers of an inventory see: sites, devices, and what changes. Only the latest of each is kept, and in which
/// order they changed: so a viewer who was away, or is slow, gets what has changed meanwhile once, and costs nothing.
/// One thread at a time; reads no clock.
class PageModel final
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Devices and sites that are remembered to have been removed; a viewer who has missed more starts anew.
    static constexpr std::size_t MaximumRemoved = 10000;

    /// How long a report of health counts.
    static constexpr std::chrono::seconds HealthLasts{30};

    /// run tells the events of this start of the program from those of all others; letters and digits.
    explicit PageModel(std::string run);

    /// state is one of the words of a site's state, and its devices are unknown unless it is "ready"; text is for
    /// people.
    void SetSite(const std::string& site, const std::string& state, const std::string& text);

    /// With its devices.
    void RemoveSite(const std::string& site);

    void SetDevice(const std::string& site, const std::string& id, const Fleet::DeviceRecord& record);
    void RemoveDevice(const std::string& site, const std::string& id);

    /// Counts the event, and shows what it tells beside the device's record. Of devices that are not there, nothing.
    void Take(const Fleet::SiteEvent& event);

    /// In the place of those that were there.
    void SetMetrics(std::vector<Metric> metrics) { this->metrics = std::move(metrics); }

    /// Says that the thread which does the work is alive; problem is empty when all is well.
    void SetHealth(const std::string& problem, Time now);

    /// Why the program does not do its work; empty when it does.
    std::string Problem(Time now) const;

    /// Where in the order of changes somebody is: all that comes after it is news.
    using Position = std::uint64_t;

    Position Newest() const { return newest; }

    std::string EventId(Position position) const { return run + "-" + std::to_string(position); }

    /// Nothing for the id of another start, for one that was never given, and when what was removed since is not
    /// remembered.
    std::optional<Position> Find(std::string_view eventId) const;

    /// What has changed after the position, as server-sent events, of so many bytes and at most one event more; moves
    /// the position behind them. Empty when nothing has.
    std::string EventsAfter(Position& position, std::size_t bytes) const;

    /// That the viewer is to begin anew, and with which event.
    std::string ResetEvent() const;

    /// How far a document with everything has been written.
    struct Snapshot
    {
        enum class SnapshotPart
        {
            Head,
            Sites,
            Devices,
            End
        };

        SnapshotPart Part = SnapshotPart::Head;
        std::pair<std::string, std::string> Last = {}; // that was written
        bool IsFirst = true;
    };

    /// The next piece of the document, of so many bytes and at most one element more; empty at the end. What changes
    /// between pieces is told again by the events after the document's.
    std::string NextPiece(Snapshot& snapshot, std::size_t bytes, Fleet::WallTime now) const;

    /// In the text form of Prometheus.
    std::string MetricsText() const;

private:
    using Key = std::pair<std::string, std::string>; // site and device; of a site the device is empty

    struct Site
    {
        Position Changed;
        std::string State;
        std::string Text;
    };

    struct Device
    {
        Position Changed = 0;
        std::optional<Fleet::DeviceRecord> Record = {};
        std::string LastChange = {}; // JSON objects; empty without one
        std::string LastConflict = {};
        std::string ConflictOver = {}; // as it stands in hosts that take part
    };

    Position Touch(const Key& key, Position before);
    void NoteRemoved(const Key& key, Position before);
    void TouchDevicesOf(const std::string& site);
    void TakeChange(const Fleet::SiteEvent& event);
    void TakeConflict(const Fleet::SiteEvent& event);
    void EndConflictOfOne(const std::string& site, const std::string& over);
    bool IsReady(const std::string& site) const;
    const char* StateNameOf(const std::string& site, const Device& device) const;
    std::string ElementOf(const std::string& site, const Site& each) const;
    std::string ElementOf(const Key& key, const Device& each) const;
    std::string EventOf(Position position, const Key& key) const;

    const std::string run;
    std::map<std::string, Site> sites;
    std::map<Key, Device> devices;
    std::map<Position, Key> changes; // the latest of each site and device, and of those that were removed
    std::set<Position> removals;     // those of changes that are removals
    std::map<Key, Position> removed; // the same by key
    Position newest = 0;
    Position forgotten = 0;                           // of the latest removal that is remembered no more
    std::map<std::string, std::uint64_t> eventCounts; // by kind
    std::vector<Metric> metrics;
    std::string problem = "starting";
    std::optional<Time> healthTold;
};
} // namespace Zent::Discovery::Page
