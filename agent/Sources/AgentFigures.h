#pragma once

#include "ISitePublisher.h"
#include "Inventory/DeviceMessage.h"
#include "Inventory/Time.h"
#include "Page/PageModel.h"
#include "Programs/LogReader.h"
#include "Programs/UdpSockets.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Zent::Discovery::Agent
{
/// How the agent is doing, in numbers. One thread.
class AgentFigures final
{
public:
    /// Counts a message of a device.
    void Count(const Inventory::DeviceMessage& message);

    /// What those who watch over the agent see. A broker's figures are left out when there is none.
    std::vector<Page::Metric> Metrics(const std::optional<ISitePublisher::PublisherStatus>& broker,
                                      Inventory::Time now) const;

    /// Takes what the system tells of the port of the devices' messages.
    void SetSockets(const std::vector<Programs::UdpSocket>& sockets);

    bool IsPortBound = true;
    std::optional<std::uint64_t> KernelDrops = {};    // nothing when the system does not count
    std::optional<Programs::LogSummary> Library = {}; // what it has dropped; nothing when its log goes elsewhere
    std::size_t LostMessages = 0;                     // of devices, that came faster than they were taken
    std::size_t UnreadableMessages = 0;               // of devices
    std::size_t LostByBroker = 0;                     // messages of the broker, likewise
    std::optional<Inventory::Time> LastRound = {};    // when all devices were asked last

private:
    std::array<std::uint64_t, 3> received = {}; // messages by kind
};
} // namespace Zent::Discovery::Agent
