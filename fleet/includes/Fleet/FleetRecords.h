#pragma once

#include "Fleet/ReadingListener.h"

#include <map>
#include <string>

namespace Zent::Discovery::Fleet
{
/// Keeps the records that a reading finds.
class FleetRecords final : public ReadingListener
{
public:
    using Records = std::map<std::string, DeviceRecord>; // by the device's id

    /// Empty when there are none. Stays where it is as long as this object.
    const Records& Of(const std::string& site) { return sites[site]; }

    void TakeForgotten(const std::string& site) override { sites[site].clear(); }

    void TakeRecord(const std::string& site, const std::string& id, const DeviceRecord& record) override
    {
        sites[site].insert_or_assign(id, record);
    }

    void TakeRemoval(const std::string& site, const std::string& id) override { sites[site].erase(id); }

private:
    std::map<std::string, Records> sites; // by name
};
} // namespace Zent::Discovery::Fleet
