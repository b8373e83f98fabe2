#pragma once

#include "Inventory/DeviceRow.h"
#include "Inventory/DeviceTable.h"
#include "Inventory/SiteFile.h"
#include "Show/EventText.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Zent::Discovery::Console
{
/// How devices that are watched compare with a site file. Main thread only.
class SiteState final
{
public:
    explicit SiteState(Inventory::SiteFile site);

    const Inventory::SiteFile& Site() const { return site; }

    /// Looks at the devices anew, and gives what has become otherwise since the last time in sentences, which may hold
    /// text from outside. Nobody counts as missing as long as hasTime says that they may not have answered yet.
    std::vector<EventText> Update(const Inventory::DeviceTable& devices, bool hasTime);

    /// Rows for those that are missing. Valid until the next Update.
    const std::vector<Inventory::DeviceRow>& Missing() const { return missing; }

    /// What to call the state of a row of the table, or of those above: missing, foreign or deviating; null when the
    /// device is as the site wants it.
    const char* NameOf(const Inventory::DeviceRow& row) const;

    /// 1 missing, 2 foreign; empty when all is as the site wants it.
    std::string Summary() const;

private:
    Inventory::SiteFile site;
    std::unordered_map<std::string, std::string> told;  // sentences, by the MAC addresses that they are about
    std::unordered_map<std::string, const char*> names; // by the MAC addresses of the devices' main interfaces
    std::vector<Inventory::DeviceRow> missing;
    std::vector<std::size_t> counts{0, 0, 0}; // by their kinds
};
} // namespace Zent::Discovery::Console
