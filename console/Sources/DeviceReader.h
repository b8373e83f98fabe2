#pragma once

#include "Device.h"
#include "MessageQueue.h"
#include "Output.h"

#include <chrono>
#include <optional>

namespace Zent::Discovery::Console
{
/// Reads devices from the queue of messages for a limited or unlimited time.
class DeviceReader final
{
public:
    /// The time starts now. Queue and output must outlive the reader.
    DeviceReader(MessageQueue& messages, Output& output, std::optional<std::chrono::milliseconds> time);

    /// Waits for the next message and reads it. Nothing when the time is over or the user has interrupted.
    /// A document that cannot be read, and messages lost, are complained about and left out.
    std::optional<Device> Next();

    bool IsInterrupted() const;

private:
    void ComplainAboutLoss();

    MessageQueue& messages;
    Output& output;
    const std::optional<MessageQueue::TimePoint> deadline;
    std::size_t knownLoss = 0;
};
} // namespace Zent::Discovery::Console
