#pragma once

#include "Inventory/Device.h"
#include "Programs/MessageQueue.h"

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
/// Reads devices from the queue of messages for a limited or unlimited time.
class DeviceReader final
{
public:
    using Complain = std::function<void(const std::string& text)>;

    /// The time starts now. complain is told of documents that cannot be read and of lost messages, which are left out.
    /// The queue must outlive the reader.
    DeviceReader(Programs::MessageQueue& messages, Complain complain, std::optional<std::chrono::milliseconds> time);

    /// Waits for the next message and reads it, until then at the latest. Nothing when that moment has come, the time
    /// is over or the user has interrupted.
    std::optional<Inventory::Device> Next(std::optional<Programs::MessageQueue::TimePoint> until = std::nullopt);

    /// True when no message is taken any more.
    bool IsOver() const;

    bool IsInterrupted() const;

private:
    void ComplainAboutLoss();

    Programs::MessageQueue& messages;
    std::deque<Inventory::DeviceMessage> taken; // and not yet read
    const Complain complain;
    const std::optional<Programs::MessageQueue::TimePoint> deadline;
    std::size_t knownLoss = 0;
};
} // namespace Zent::Discovery::Console
