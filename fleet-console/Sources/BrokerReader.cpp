#include "BrokerReader.h"

#include "BrokerDialogue.h"
#include "Fleet/Conversation.h"

#include <stdexcept>

using Zent::Discovery::Broker::BrokerSettings;
using Zent::Discovery::Fleet::Conversation;
using Zent::Discovery::Fleet::FleetReading;
using Zent::Discovery::Programs::MessageQueue;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// A reading as what is said on a connection.
class ReadingConversation final : public Conversation
{
public:
    explicit ReadingConversation(FleetReading& reading)
        : reading(reading)
    {
    }

    void TakeAnswer(const Answer& answer, Time /*now*/) override
    {
        if (answer.IsRefusal())
        {
            throw std::runtime_error("the broker refuses: " + answer.Text);
        }
    }

    void TakeMessage(const Message& message, Time now) override
    {
        reading.Take(message.Topic, message.Payload, message.IsRetained, now);
    }

    std::vector<Step> Advance(Time now) override { return reading.Advance(now); }

    Time NextTime() const override { return reading.NextTime(); }

    bool IsOver() const override { return reading.IsOver(); }

private:
    FleetReading& reading;
};
} // namespace

void BrokerReader::Read(const BrokerSettings& settings, MessageQueue& waiter, FleetReading& reading)
{
    ReadingConversation conversation(reading);
    BrokerDialogue::Hold(settings, waiter, conversation);
}
} // namespace Zent::Discovery::FleetConsole
