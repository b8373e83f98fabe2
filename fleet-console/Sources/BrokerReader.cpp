#include "BrokerReader.h"

#include "BrokerDialogue.h"
#include "Fleet/Conversation.h"
#include "Show/Output.h"

#include <stdexcept>

using Zent::Discovery::Fleet::Conversation;
using Zent::Discovery::Fleet::FleetReading;

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

void BrokerReader::Read(CommandContext& context, FleetReading& reading)
{
    ReadingConversation conversation(reading);
    BrokerDialogue::Hold(context, conversation);
}

ExitStatus BrokerReader::Conclude(CommandContext& context, const FleetReading& reading)
{
    if (context.Waiter.IsInterrupted())
    {
        context.Out.Complain("interrupted before everything was received");
        return ExitStatus::Interrupted;
    }
    for (const std::string& text : reading.Shortfalls())
    {
        context.Out.Complain(text);
    }
    if (reading.Sites().empty())
    {
        context.Out.Complain("the broker has no site, or none that this user may read");
        return ExitStatus::NoAnswer;
    }
    return reading.Shortfalls().empty() ? ExitStatus::Success : ExitStatus::Incomplete;
}
} // namespace Zent::Discovery::FleetConsole
