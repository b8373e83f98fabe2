#include "SiteInventory.h"

#include "Fleet/Topics.h"
#include "Log.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Fleet::DeviceId;
using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::WallTime;
using Zent::Discovery::Inventory::Conflict;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::Event;
using Json = nlohmann::json;

namespace Zent::Discovery::Agent
{
namespace
{
/// That it is silent for a while is nobody's news: the record changes when the device does.
DeviceRecord::DeviceState StateOf(const DeviceRow& row)
{
    switch (row.State())
    {
    case DeviceRow::RowState::Gone:
        return DeviceRecord::DeviceState::Gone;
    case DeviceRow::RowState::Left:
        return DeviceRecord::DeviceState::Left;
    case DeviceRow::RowState::Flapping:
        return DeviceRecord::DeviceState::Flapping;
    case DeviceRow::RowState::Present:
    case DeviceRow::RowState::Stale:
    case DeviceRow::RowState::Asked:
        break;
    }
    return DeviceRecord::DeviceState::Present;
}

const char* KindOf(const Event& event)
{
    switch (event.Kind)
    {
    case Event::EventKind::Appeared:
        return "appeared";
    case Event::EventKind::Changed:
        return "changed";
    case Event::EventKind::Left:
        return "left";
    case Event::EventKind::Gone:
        return "gone";
    case Event::EventKind::Returned:
        return "returned";
    default:
        return nullptr;
    }
}

std::string DetailsOf(const DeviceRecord& record, const Event& event)
{
    std::string details = R"({"Revision":")" + record.Revision() + R"(","Host":)" + record.Host();
    if (!event.Changes.empty())
    {
        Json changes = Json::array();
        for (const auto& each : event.Changes)
        {
            changes.push_back({{"Property", each.Property},
                               {"Before", each.Before ? Json(*each.Before) : Json()},
                               {"After", each.After ? Json(*each.After) : Json()}});
        }
        details += R"(,"Changes":)" + changes.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    return details + "}";
}
} // namespace

SiteInventory::SiteInventory(
    std::string site, std::string agent, const Inventory::Session& session, ISitePublisher& publisher, Log& log)
    : site(std::move(site))
    , agent(std::move(agent))
    , session(session)
    , publisher(publisher)
    , log(log)
{
}

void SiteInventory::Take(const Event& event, WallTime now)
{
    if (event.Contradiction)
    {
        TellOfConflict(*event.Contradiction, now);
        return;
    }
    if (event.Kind == Event::EventKind::Forgotten)
    {
        Withdraw(event.Row);
        return;
    }
    const DeviceRow* const row = session.Devices().Find(event.Row);
    const std::string id = row == nullptr ? "" : LowestIdOf(*row);
    if (id.empty())
    {
        return;
    }
    const bool isNews = event.Kind != Event::EventKind::Appeared || !publisher.HasRecord(id);
    Update(*row, id, now);
    const DeviceRecord* const record = Find(id);
    if (const char* const kind = KindOf(event); kind != nullptr && record != nullptr && isNews)
    {
        Tell(kind, id, DetailsOf(*record, event), now);
    }
}

void SiteInventory::TakeUnclaimed(const std::string& id,
                                  const std::optional<DeviceRecord>& record,
                                  bool isWhole,
                                  WallTime now)
{
    if (records.contains(id))
    {
        return; // it has appeared meanwhile
    }
    if (!record || record->IsOverdue(now))
    {
        publisher.RemoveRecord(id);
        return;
    }
    DeviceRecord& kept = records.emplace(id, *record).first->second;
    if (isWhole && !kept.IsAway())
    {
        CallGone(id, kept, now);
        return;
    }
    publisher.PublishRecord(id, kept);
}

void SiteInventory::CallSilentGone(WallTime now)
{
    for (auto& [id, record] : records)
    {
        if (!rows.contains(id) && !record.IsAway())
        {
            CallGone(id, record, now);
        }
    }
}

void SiteInventory::CallGone(const std::string& id, DeviceRecord& record, WallTime now)
{
    record = DeviceRecord(DeviceRecord::DeviceState::Gone, record.Host(), now);
    publisher.PublishRecord(id, record);
    Tell("gone", id, DetailsOf(record, {}), now);
}

void SiteInventory::RemoveOverdue(WallTime now)
{
    for (auto each = records.begin(); each != records.end();)
    {
        const auto next = std::next(each);
        if (each->second.IsOverdue(now))
        {
            publisher.RemoveRecord(each->first);
            records.erase(each);
        }
        each = next;
    }
}

std::string SiteInventory::IdOf(const DeviceRow& row) const
{
    const auto found = ids.find(row.Id);
    return found == ids.end() ? "" : found->second;
}

std::string SiteInventory::IdOf(const Device& device) const
{
    for (const Device::Interface& each : device.Interfaces())
    {
        if (const DeviceRow* const row = session.Devices().Find(each.MACAddress))
        {
            return IdOf(*row);
        }
    }
    return "";
}

/// The lowest of the MAC addresses by which the table knows the row: a device that answers on several interfaces in
/// turn stays one, and an address that two devices have is that of one.
std::string SiteInventory::LowestIdOf(const DeviceRow& row) const
{
    std::optional<std::string> lowest;
    for (const Device::Interface& each : row.Latest->Interfaces())
    {
        const std::optional<std::string> id = DeviceId::FromMAC(each.MACAddress);
        if (id && (!lowest || *id < *lowest) && session.Devices().Find(each.MACAddress) == &row)
        {
            lowest = id;
        }
    }
    return lowest.value_or("");
}

const DeviceRecord* SiteInventory::Find(const std::string& id) const
{
    const auto found = records.find(id);
    return found == records.end() ? nullptr : &found->second;
}

SiteInventory::Counts SiteInventory::Count() const
{
    const auto isAway = [](const auto& each) { return each.second.IsAway(); };
    return {records.size(), static_cast<std::size_t>(std::ranges::count_if(records, isAway))};
}

void SiteInventory::Update(const DeviceRow& row, const std::string& id, WallTime now)
{
    if (IdOf(row) != id)
    {
        Withdraw(row.Id); // an interface came or went, and with it the lowest address
    }
    ids.insert_or_assign(row.Id, id);
    rows.insert_or_assign(id, row.Id);
    try
    {
        const DeviceRecord* const before = Find(id);
        const DeviceRecord::DeviceState state = StateOf(row);
        DeviceRecord record(state, DeviceRecord::HostOf(row.Latest->Message.Document),
                            before != nullptr && before->State() == state ? before->Since() : now);
        if (before == nullptr || before->Revision() != record.Revision())
        {
            publisher.PublishRecord(id, record);
            records.insert_or_assign(id, std::move(record));
        }
    }
    catch (const std::invalid_argument& error)
    {
        log.Warning("device " + id + " is left out: " + error.what());
    }
}

/// Removes the row's record, unless it is another row's by now.
void SiteInventory::Withdraw(std::uint64_t row)
{
    const auto known = ids.extract(row);
    const auto holder = known ? rows.find(known.mapped()) : rows.end();
    if (holder != rows.end() && holder->second == row)
    {
        records.erase(known.mapped());
        publisher.RemoveRecord(known.mapped());
        rows.erase(holder);
    }
}

void SiteInventory::Tell(const char* kind, const std::string& id, std::string details, WallTime now)
{
    publisher.PublishEvent({site, agent + "-" + std::to_string(++lastEvent), kind, id, now, std::move(details)});
}

void SiteInventory::TellOfConflict(const Conflict& conflict, WallTime now)
{
    Json devices = Json::array();
    for (const Device* const each : {conflict.First.get(), conflict.Second.get()})
    {
        devices.push_back(IdOf(*each));
    }
    const Json details = {
        {"Conflict", conflict.ToString()}, {"Count", conflict.Count}, {"Devices", std::move(devices)}};
    Tell("conflict", "", details.dump(-1, ' ', false, Json::error_handler_t::replace), now);
}
} // namespace Zent::Discovery::Agent
