#include "DeviceReader.h"

#include "system/Exception.h"

#include <string>
#include <utility>

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

DeviceReader::DeviceReader(MessageQueue& messages, Output& output, std::optional<std::chrono::milliseconds> time)
    : messages(messages)
    , output(output)
    , deadline(DeadlineAfter(time))
{
}

std::optional<Device> DeviceReader::Next()
{
    while (std::optional<DeviceMessage> message = messages.Take(deadline))
    {
        ComplainAboutLoss();
        try
        {
            return Device(std::move(*message));
        }
        catch (const Nfx::System::Exception& exception)
        {
            output.Complain("unreadable message left out: " + std::string(exception.GetMessage().View()));
        }
    }
    return std::nullopt;
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
        output.Complain(std::to_string(loss - knownLoss) + " messages lost: they come faster than they can be shown");
        knownLoss = loss;
    }
}
} // namespace Zent::Discovery::Console
