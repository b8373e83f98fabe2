#include "SiteDevices.h"

#include "Fleet/Topics.h"
#include "Inventory/DeviceTable.h"

#include <stdexcept>

using Zent::Discovery::Fleet::DeviceId;
using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::FleetRecords;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::Time;

namespace Zent::Discovery::FleetConsole
{
namespace
{
DeviceMessage MessageOf(const DeviceRecord& record)
{
    const bool isAway =
        record.State() == DeviceRecord::DeviceState::Left || record.State() == DeviceRecord::DeviceState::Gone;
    return {isAway ? DeviceMessage::MessageKind::Bye : DeviceMessage::MessageKind::Signature, record.ToDocument(),
            record.Since()};
}
} // namespace

SiteDevices::SiteDevices(const FleetRecords::Records& records)
{
    for (const auto& [id, record] : records)
    {
        try
        {
            const Device device(MessageOf(record));
            session.Feed(device.Message, Time{0});
            for (const Device::Interface& each : device.Interfaces())
            {
                entries.insert_or_assign(each.MACAddress, Entry{id, record.Revision()});
            }
            addresses.emplace(device.HostName, DeviceId::ToMAC(id).value_or(""));
        }
        catch (const std::invalid_argument&) // whoever may write to the broker may have written it
        {
        }
    }
}

std::optional<SiteDevices::Entry> SiteDevices::Find(const std::string& macAddress) const
{
    const auto found = entries.find(macAddress);
    return found == entries.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string> SiteDevices::AddressesOf(std::string_view hostName) const
{
    std::vector<std::string> found;
    for (auto [each, end] = addresses.equal_range(hostName); each != end; ++each)
    {
        found.push_back(each->second);
    }
    return found;
}
} // namespace Zent::Discovery::FleetConsole
