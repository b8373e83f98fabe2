#include "BrokerDialogue.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <stdexcept>
#include <utility>

using Zent::Discovery::Broker::BrokerConnection;
using Zent::Discovery::Broker::BrokerNews;
using Zent::Discovery::Broker::Publication;
using Zent::Discovery::Fleet::Conversation;
using Zent::Discovery::Programs::MessageQueue;

namespace Zent::Discovery::FleetConsole
{
namespace
{
using Clock = std::chrono::steady_clock;

/// How long the program sleeps at most while it waits for nothing but the broker.
constexpr std::chrono::hours LongestWait{1};

class Dialogue final
{
public:
    Dialogue(CommandContext& context, Conversation& conversation)
        : waiter(context.Waiter)
        , conversation(conversation)
        , connection(context.Broker, [&context] { context.Waiter.Wake(); })
    {
    }

    void Run()
    {
        while (!conversation.IsOver() && !waiter.IsInterrupted())
        {
            for (BrokerNews& each : connection.Take())
            {
                if (!conversation.IsOver()) // what breaks then harms nobody
                {
                    Take(each);
                }
            }
            if (isConnected && !conversation.IsOver())
            {
                for (Conversation::Step& each : conversation.Advance(Now()))
                {
                    Do(each);
                }
            }
            if (!conversation.IsOver())
            {
                waiter.Take(Clock::now() + TimeToSleep());
            }
        }
        connection.Close();
    }

private:
    Conversation::Time Now() const { return std::chrono::duration_cast<Conversation::Time>(Clock::now() - start); }

    Conversation::Time TimeToSleep() const
    {
        const Conversation::Time now = Now();
        const Conversation::Time next = isConnected ? conversation.NextTime() : now + LongestWait;
        return std::clamp<Conversation::Time>(next - now, Conversation::Time{0}, LongestWait);
    }

    void Take(BrokerNews& news)
    {
        switch (news.Kind)
        {
        case BrokerNews::NewsKind::Connected:
            isConnected = true;
            conversation.TakeLimits({news.KeepsRetained, news.MaximumPacketBytes});
            break;
        case BrokerNews::NewsKind::Disconnected:
            throw std::runtime_error("no connection to the broker: " + news.Text);
        case BrokerNews::NewsKind::Delivered:
        case BrokerNews::NewsKind::Refused:
        case BrokerNews::NewsKind::Subscribed:
            if (const auto step = numbers.extract(news.Number); step)
            {
                conversation.TakeAnswer({step.mapped(), news.Code, std::move(news.Text)}, Now());
            }
            break;
        case BrokerNews::NewsKind::Received:
            conversation.TakeMessage({std::move(news.Message.Topic), std::move(news.Message.Payload),
                                      news.Message.IsRetained, std::move(news.Message.CorrelationData)},
                                     Now());
            break;
        }
    }

    void Do(Conversation::Step& step)
    {
        const std::size_t number = step.Number;
        const bool hasAnswer = step.Kind != Conversation::Step::StepKind::Unsubscribe;
        if (const std::optional<int> sent = BrokerDialogue::Do(connection, std::move(step)))
        {
            numbers.emplace(*sent, number);
        }
        else if (hasAnswer) // the end of the connection comes next; or nothing of the kind can be sent to this broker
        {
            conversation.TakeAnswer({number, Conversation::Answer::FirstOfRefusals, "it cannot be sent"}, Now());
        }
    }

    MessageQueue& waiter;
    Conversation& conversation;
    const Clock::time_point start = Clock::now();
    bool isConnected = false;
    std::map<int, std::size_t> numbers; // of steps, by those that the broker answers with
    BrokerConnection connection;
};

Publication PublicationOf(Conversation::Step step)
{
    Publication publication{std::move(step.Topic), std::move(step.Payload), step.IsRetained};
    publication.ResponseTopic = std::move(step.ResponseTopic);
    publication.CorrelationData = std::move(step.CorrelationData);
    publication.ExpirySeconds = step.ExpirySeconds;
    return publication;
}
} // namespace

void BrokerDialogue::Hold(CommandContext& context, Conversation& conversation)
{
    Dialogue(context, conversation).Run();
}

std::optional<int> BrokerDialogue::Do(BrokerConnection& connection, Conversation::Step step)
{
    using Kind = Conversation::Step::StepKind;
    switch (step.Kind)
    {
    case Kind::Subscribe:
        return connection.Subscribe(step.Topic);
    case Kind::Follow:
        return connection.Follow(step.Topic);
    case Kind::Search:
        return connection.Search(step.Topic, step.EndMark);
    case Kind::Unsubscribe:
        connection.Unsubscribe(step.Topic);
        return std::nullopt;
    case Kind::Publish:
        break;
    }
    return connection.Publish(PublicationOf(std::move(step)));
}
} // namespace Zent::Discovery::FleetConsole
