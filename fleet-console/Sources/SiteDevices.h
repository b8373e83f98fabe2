#pragma once

#include "Fleet/FleetRecords.h"
#include "Inventory/Session.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::FleetConsole
{
/// The devices of a site as its records tell of them: who is meant by a change, and who has what it gives.
class SiteDevices final
{
public:
    /// A record that changes are sent for.
    struct Entry
    {
        std::string Id;
        std::string Revision;
    };

    /// Records that are none of devices are left out.
    explicit SiteDevices(const Fleet::FleetRecords::Records& records);

    /// Those that have gone or left are not there.
    const Inventory::DeviceTable& Table() const { return session.Devices(); }

    /// The record whose device has an interface with that address, in the library's form.
    std::optional<Entry> Find(const std::string& macAddress) const;

    /// MAC addresses of the devices with that name, as their ids have them.
    std::vector<std::string> AddressesOf(std::string_view hostName) const;

private:
    Inventory::Session session{{.AskEvery = Inventory::Time{0}}};
    std::map<std::string, Entry> entries;                           // by the MAC addresses of their interfaces
    std::multimap<std::string, std::string, std::less<>> addresses; // by host name
};
} // namespace Zent::Discovery::FleetConsole
