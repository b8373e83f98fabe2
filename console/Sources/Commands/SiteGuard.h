#pragma once

#include "Inventory/Event.h"
#include "Inventory/Journal.h"
#include "Inventory/SitePlan.h"
#include "Programs/SessionDriver.h"
#include "Show/SiteState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Zent::Discovery::Console
{
class CommandContext;
class IWatchView;

/// Holds devices that are watched against a site file, tells how they differ, and gives them their names back where the
/// user wants that: one after another, each verified and kept in the journal. Addresses stay as they are.
class SiteGuard final
{
public:
    /// All must outlive the object.
    SiteGuard(SiteState& state, bool repairsNames, CommandContext& context, Programs::SessionDriver& driver);

    /// Something has happened in the session.
    void Heard(const Inventory::Event& event, IWatchView& view);

    /// Tells what has become known, and starts the next repair. hasTime is false as long as devices may not have
    /// answered yet.
    void GoOn(bool hasTime, IWatchView& view);

    /// Ends what is under way.
    void Close(IWatchView& view);

private:
    void Repair(IWatchView& view);
    void Note(const Inventory::ChangeReport& report);

    SiteState& state;
    const bool repairsNames;
    CommandContext& context;
    Programs::SessionDriver& driver;
    bool isCurrent = false; // nothing has happened since the last look
    bool hadTime = false;
    Inventory::Time nextRepair{0};
    std::optional<std::int64_t> change; // the repair that is under way
    bool isTemporary = false;           // it gives a name for a while
    std::optional<Inventory::JournalEntry> entry;
    std::string exchange;                                       // the Id of its first entry while one goes on
    std::unordered_map<std::string, Inventory::Time> notBefore; // when to repair a device again, by its MAC address
    std::unordered_set<std::string> told;                       // obstacles
};
} // namespace Zent::Discovery::Console
