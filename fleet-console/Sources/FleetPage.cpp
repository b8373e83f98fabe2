#include "FleetPage.h"

#include "Show/Output.h"

#include <algorithm>
#include <chrono>
#include <utility>

using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Fleet::SiteEvent;
using Zent::Discovery::Fleet::SiteReading;
using Zent::Discovery::Page::Metric;
using Zent::Discovery::Page::PageModel;

namespace Zent::Discovery::FleetConsole
{
namespace
{
std::vector<Metric> MetricsOf(const FleetReading& reading, const FleetPage::ConnectionState& connection)
{
    using Kind = Metric::MetricKind;
    const auto isCut = [](const SiteReading& site) { return !site.Text().empty(); };
    const auto cut = std::ranges::count_if(reading.Sites(), isCut);
    return {
        {"discovery_broker_connected", "1 while the broker is connected.", Kind::Gauge,
         connection.IsConnected ? 1.0 : 0.0},
        {"discovery_broker_messages_lost_total", "Messages of the broker that came faster than they were taken.",
         Kind::Counter, static_cast<double>(connection.Lost)},
        {"discovery_broker_messages_unreadable_total", "Messages of the broker that were not as they should be.",
         Kind::Counter, static_cast<double>(reading.Unreadable())},
        {"discovery_sites_incomplete", "Sites of which something is missing.", Kind::Gauge, static_cast<double>(cut)},
        {"discovery_sites_cut", "1 when the broker may have sites that it does not give.", Kind::Gauge,
         reading.HiddenSites().empty() ? 0.0 : 1.0}};
}

std::string WholeText(const std::string& site)
{
    return "site " + site + ": everything received";
}
} // namespace

FleetPage::FleetPage(Page::PageServer& page, Console::Output& output)
    : page(page)
    , output(output)
{
}

void FleetPage::TakeSite(const SiteReading& site)
{
    page.Update([&](PageModel& model) { model.SetSite(site.Site(), site.StateName(), site.Text()); });
}

void FleetPage::TakeForgotten(const std::string& site)
{
    page.Update([&](PageModel& model) { model.RemoveSite(site); });
    complaints.erase(WholeText(site));
    output.Complain("site " + site + ": the broker has nothing of it any more");
}

void FleetPage::TakeRecord(const std::string& site, const std::string& id, const DeviceRecord& record)
{
    page.Update([&](PageModel& model) { model.SetDevice(site, id, record); });
}

void FleetPage::TakeRemoval(const std::string& site, const std::string& id)
{
    page.Update([&](PageModel& model) { model.RemoveDevice(site, id); });
}

void FleetPage::TakeEvent(const SiteEvent& event)
{
    page.Update([&](PageModel& model) { model.Take(event); });
}

void FleetPage::Report(const FleetReading& reading, const ConnectionState& connection)
{
    const std::string trouble = connection.IsConnected ? "" : "no connection to the broker: " + connection.Trouble;
    page.Update([&](PageModel& model) {
        model.SetMetrics(MetricsOf(reading, connection));
        model.SetHealth(trouble, std::chrono::steady_clock::now());
    });
    Complain(trouble, "connected to the broker");
    for (const SiteReading& site : reading.Sites())
    {
        if (!site.IsBusy())
        {
            Complain(site.Text().empty() ? "" : "site " + site.Site() + ": " + site.Text(), WholeText(site.Site()));
        }
    }
    Complain(reading.HiddenSites(), "all sites are found");
}

/// Says it once, and once when it is so no more.
void FleetPage::Complain(const std::string& trouble, const std::string& otherwise)
{
    if (std::string& last = complaints[otherwise]; last != trouble)
    {
        last = trouble;
        output.Complain(trouble.empty() ? otherwise : trouble);
    }
}
} // namespace Zent::Discovery::FleetConsole
