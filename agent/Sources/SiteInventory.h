#pragma once

#include "Fleet/DeviceRecord.h"
#include "ISitePublisher.h"
#include "Inventory/Session.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

namespace Zent::Discovery::Agent
{
class Log;

/// Makes records and events of what the session tells, and keeps those of devices that are gone for as long as they
/// count. One thread.
class SiteInventory final
{
public:
    struct Counts
    {
        std::size_t Devices = 0;
        std::size_t Away = 0; // of these: gone or left
    };

    /// All must outlive the object. agent is a name that no other start of an agent has.
    SiteInventory(
        std::string site, std::string agent, const Inventory::Session& session, ISitePublisher& publisher, Log& log);

    /// Takes an event of the session.
    void Take(const Inventory::Event& event, Fleet::WallTime now);

    /// Takes a record that an earlier start has left. isWhole says that the table is: then its device is gone.
    void TakeUnclaimed(const std::string& id,
                       const std::optional<Fleet::DeviceRecord>& record,
                       bool isWhole,
                       Fleet::WallTime now);

    /// The table is whole: the devices of such records that have not answered are gone.
    void CallSilentGone(Fleet::WallTime now);

    /// Removes the records whose time is over.
    void RemoveOverdue(Fleet::WallTime now);

    /// What the device of a row is called; empty when it has no MAC address, or as long as none of its events was
    /// taken.
    std::string IdOf(const Inventory::DeviceRow& row) const;

    /// Null when there is none.
    const Fleet::DeviceRecord* Find(const std::string& id) const;

    Counts Count() const;

private:
    void Update(const Inventory::DeviceRow& row, const std::string& id, Fleet::WallTime now);
    void CallGone(const std::string& id, Fleet::DeviceRecord& record, Fleet::WallTime now);
    void Withdraw(std::uint64_t row);
    std::string LowestIdOf(const Inventory::DeviceRow& row) const;
    std::string IdOf(const Inventory::Device& device) const;
    void Tell(const char* kind, const std::string& id, std::string details, Fleet::WallTime now);
    void TellOfConflict(const Inventory::Conflict& conflict, Fleet::WallTime now);

    const std::string site;
    const std::string agent;
    const Inventory::Session& session;
    ISitePublisher& publisher;
    Log& log;
    std::map<std::string, Fleet::DeviceRecord> records; // by the device's id

    // The rows of the table that have a record, both ways.
    std::unordered_map<std::uint64_t, std::string> ids; // by the row's number
    std::unordered_map<std::string, std::uint64_t> rows;
    std::uint64_t lastEvent = 0;
};
} // namespace Zent::Discovery::Agent
