#include "AgentFigures.h"

#include <chrono>
#include <iterator>
#include <utility>

using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Page::Metric;

namespace Zent::Discovery::Agent
{
namespace
{
constexpr const char* Kinds[] = {"signature", "hello", "bye"};

Metric Counter(const char* name, const char* help, std::uint64_t value, std::optional<Metric::Label> which = {})
{
    return {name, help, Metric::MetricKind::Counter, static_cast<double>(value), std::move(which)};
}

Metric Gauge(const char* name, const char* help, double value)
{
    return {name, help, Metric::MetricKind::Gauge, value, {}};
}
} // namespace

void AgentFigures::Count(const DeviceMessage& message)
{
    ++received[static_cast<std::size_t>(message.Kind)];
}

void AgentFigures::SetSockets(const std::vector<Programs::UdpSocket>& sockets)
{
    IsPortBound = false;
    KernelDrops.reset();
    for (const Programs::UdpSocket& each : sockets)
    {
        if (each.IsOwn)
        {
            IsPortBound = true;
            KernelDrops = each.Drops;
        }
    }
}

std::vector<Metric> AgentFigures::Metrics(const std::optional<ISitePublisher::PublisherStatus>& broker,
                                          Inventory::Time now) const
{
    std::vector<Metric> metrics;
    for (std::size_t kind = 0; kind < std::size(Kinds); ++kind)
    {
        metrics.push_back(Counter("discovery_datagrams_received_total", "Messages of devices by kind.", received[kind],
                                  Metric::Label("kind", Kinds[kind])));
    }
    std::vector<std::pair<const char*, std::size_t>> dropped = {
        {"queue-full", LostMessages + (Library ? Library->QueueFull : 0)}, {"unreadable", UnreadableMessages}};
    if (Library)
    {
        dropped.insert(dropped.end(), {{"format", Library->FormatDropped}, {"oversize", Library->Oversize}});
    }
    for (const auto& [reason, count] : dropped)
    {
        metrics.push_back(Counter("discovery_datagrams_dropped_total", "Datagrams that were not taken, by reason.",
                                  count, Metric::Label("reason", reason)));
    }
    if (KernelDrops)
    {
        metrics.push_back(Counter("discovery_kernel_drops_total",
                                  "Datagrams that found the receive buffer of UDP port 12001 full.", *KernelDrops));
    }
    if (LastRound)
    {
        metrics.push_back(Gauge("discovery_last_round_seconds", "Time since all devices were asked.",
                                std::chrono::duration<double>(now - *LastRound).count()));
    }
    if (broker)
    {
        metrics.push_back(
            Gauge("discovery_broker_connected", "1 while the broker is connected.", broker->IsConnected ? 1 : 0));
        metrics.push_back(Gauge("discovery_broker_records_waiting", "Records that the broker is yet to get.",
                                static_cast<double>(broker->Waiting)));
        metrics.push_back(Counter("discovery_broker_messages_lost_total",
                                  "Messages of the broker that came faster than they were taken.", LostByBroker));
    }
    return metrics;
}
} // namespace Zent::Discovery::Agent
