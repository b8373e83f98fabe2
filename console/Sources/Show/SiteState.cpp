#include "Show/SiteState.h"

#include <array>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::DeviceTable;
using Zent::Discovery::Inventory::SiteDeviation;
using Zent::Discovery::Inventory::SiteFile;

namespace Zent::Discovery::Console
{
namespace
{
using Kind = SiteDeviation::DeviationKind;

constexpr std::array Looks = {Style::Left, Style::Appeared, Style::Changed};

/// A row for a device that was not heard.
DeviceRow RowOf(const SiteDeviation& deviation)
{
    DeviceRow row;
    row.Latest = std::make_shared<Device>(deviation.Wanted->ToDevice());
    row.Condition = DeviceRow::RowState::Gone;
    return row;
}
} // namespace

SiteState::SiteState(SiteFile site)
    : site(std::move(site))
{
}

std::vector<EventText> SiteState::Update(const DeviceTable& devices, bool hasTime)
{
    const std::vector<const Device*> here = devices.Here();
    std::unordered_map<std::string, std::string> now;
    std::vector<EventText> news;
    names.clear();
    missing.clear();
    counts.assign(counts.size(), 0);
    for (const SiteDeviation& each : site.Compare(here))
    {
        if (each.Kind == Kind::Missing && !hasTime)
        {
            continue;
        }
        if (each.Kind == Kind::Missing)
        {
            missing.push_back(RowOf(each));
        }
        const Device& device = each.Found == nullptr ? *missing.back().Latest : *each.Found;
        names.insert_or_assign(device.MainInterface().MACAddress, each.KindName());
        ++counts[static_cast<std::size_t>(each.Kind)];
        const std::string& text = now.emplace(each.MACAddress(), each.ToString()).first->second;
        if (const auto before = told.find(each.MACAddress()); before == told.end() || before->second != text)
        {
            news.push_back({text, Looks[static_cast<std::size_t>(each.Kind)]});
        }
    }
    for (const auto& entry : site.Entries())
    {
        if (told.contains(entry.MACAddress) && !now.contains(entry.MACAddress))
        {
            news.push_back(
                {entry.HostName.value_or("") + " (" + entry.MACAddress + ") is as the site wants it", Style::Appeared});
        }
    }
    told = std::move(now);
    return news;
}

const char* SiteState::NameOf(const DeviceRow& row) const
{
    const auto found = names.find(row.Latest->MainInterface().MACAddress);
    return found == names.end() ? nullptr : found->second;
}

std::string SiteState::Summary() const
{
    static constexpr std::array Names = {"missing", "foreign", "deviating"};
    std::string summary;
    for (std::size_t i = 0; i < Names.size(); ++i)
    {
        if (counts[i] > 0)
        {
            summary += (summary.empty() ? "" : ", ") + std::to_string(counts[i]) + " " + Names[i];
        }
    }
    return summary;
}
} // namespace Zent::Discovery::Console
