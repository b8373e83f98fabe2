#include "Commands/DeviceReader.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Programs::MessageQueue;

namespace Zent::Discovery::Console
{
namespace
{
std::optional<MessageQueue::TimePoint> DeadlineAfter(std::optional<std::chrono::milliseconds> time)
{
    if (!time)
    {
        return std::nullopt;
    }
    return std::chrono::steady_clock::now() + *time;
}
} // namespace

DeviceReader::DeviceReader(MessageQueue& messages, Complain complain, std::optional<std::chrono::milliseconds> time)
    : messages(messages)
    , complain(std::move(complain))
    , deadline(DeadlineAfter(time))
{
}

std::optional<Device> DeviceReader::Next(std::optional<MessageQueue::TimePoint> until)
{
    const std::optional<MessageQueue::TimePoint> end = until && deadline ? std::min(*until, *deadline)
                                                       : until           ? until
                                                                         : deadline;
    for (;;)
    {
        if (taken.empty())
        {
            taken = messages.Take(end);
            ComplainAboutLoss();
        }
        if (taken.empty())
        {
            return std::nullopt;
        }
        const DeviceMessage message = std::move(taken.front());
        taken.pop_front();
        try
        {
            return Device(message);
        }
        catch (const std::invalid_argument& exception)
        {
            complain("unreadable message left out: " + std::string(exception.what()));
        }
    }
}

bool DeviceReader::IsOver() const
{
    return IsInterrupted() || (deadline && std::chrono::steady_clock::now() >= *deadline);
}

bool DeviceReader::IsInterrupted() const
{
    return messages.IsInterrupted();
}

void DeviceReader::ComplainAboutLoss()
{
    const std::size_t loss = messages.Lost();
    if (loss != knownLoss)
    {
        complain(std::to_string(loss - knownLoss) + " messages lost: they come faster than they can be shown");
        knownLoss = loss;
    }
}
} // namespace Zent::Discovery::Console
