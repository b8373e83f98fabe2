#include "Fleet/BrokerCheck.h"
#include "Fleet/CommandExchange.h"
#include "Fleet/RetainedRemoval.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

using namespace Zent::Discovery::Fleet;
using namespace std::chrono_literals;
using Kind = Conversation::Step::StepKind;
using Answer = Conversation::Answer;
using Settings = std::vector<std::string>;

namespace
{
/// Lets a conversation come to its end with a broker that keeps messages, gives some of them, and takes no time.
class ScriptedBroker final
{
public:
    void Hold(Conversation& conversation)
    {
        while (!conversation.IsOver())
        {
            const std::vector<Conversation::Step> steps = conversation.Advance(now);
            for (const Conversation::Step& step : steps)
            {
                Do(conversation, step);
            }
            if (steps.empty() && !conversation.IsOver())
            {
                ASSERT_GT(conversation.NextTime(), now);
                now = conversation.NextTime();
                ASSERT_LT(now, 1h) << "it never ends";
            }
        }
    }

    std::size_t Limit = 10;                      // of what a subscriber gets
    std::map<std::string, std::string> Retained; // by topic
    std::function<std::uint8_t(const Conversation::Step& step)> Code = [](auto&) { return 0; }; // of the answer
    std::vector<Conversation::Step> Published;

private:
    void Do(Conversation& conversation, const Conversation::Step& step)
    {
        if (step.Kind == Kind::Unsubscribe)
        {
            return;
        }
        const std::uint8_t code = Code(step);
        if (step.Kind == Kind::Subscribe)
        {
            const std::string root = step.Topic.substr(0, step.Topic.find_first_of("#+"));
            std::size_t given = 0;
            for (const auto& [topic, text] : std::map(Retained))
            {
                if (topic.starts_with(root) && given++ < Limit)
                {
                    conversation.TakeMessage({topic, text, true}, now);
                }
            }
        }
        else
        {
            Published.push_back(step);
            step.Payload.empty() ? Retained.erase(step.Topic)
                                 : Retained.insert_or_assign(step.Topic, step.Payload).second;
        }
        conversation.TakeAnswer({step.Number, code, code == 0 ? "" : "no"}, now);
    }

    Conversation::Time now{0};
};

const SiteTopics Plant("plant-1");
const std::string Replies = "discovery/v1/plant-1/replies/ann/token";

std::vector<Command> TwoRenames()
{
    std::vector<Command> commands(2, Command{Command::CommandKind::Rename});
    for (Command& each : commands)
    {
        each.Device = "02-00-00-00-00-01";
        each.Revision = "r1";
        each.HostName = "press-4";
    }
    return commands;
}

TEST(ConversationTest, ARequestIsOneThatAgentsTakeAndOnlyItsOwnReplyCounts)
{
    CommandExchange exchange(Plant, "ann", "token", TwoRenames(), 40s);
    const auto subscription = exchange.Advance(0s);
    ASSERT_EQ(subscription.size(), 1U);
    EXPECT_EQ(subscription[0].Topic, Replies);
    exchange.TakeAnswer({subscription[0].Number}, 0s);
    const auto steps = exchange.Advance(0s);
    ASSERT_EQ(steps.size(), 2U);
    const CommandMessage sent{steps[0].Payload, steps[0].ResponseTopic, steps[0].CorrelationData,
                              steps[0].ExpirySeconds, steps[0].IsRetained};
    EXPECT_EQ(Command::Read(sent, Plant).HostName, "press-4"); // as the agent reads it
    EXPECT_EQ(steps[0].ExpirySeconds, 30U);

    exchange.TakeAnswer({steps[0].Number}, 1s);
    const std::string applied = Verdict{"applied"}.ToJson();
    exchange.TakeMessage({Replies, applied, false, "token-9"}, 1s);
    exchange.TakeMessage({Replies, applied, false, ""}, 1s);
    exchange.TakeMessage({Replies + "/x", applied, false, steps[0].CorrelationData}, 1s);
    EXPECT_FALSE(exchange.Verdicts()[0]);
    exchange.TakeMessage({Replies, applied, false, steps[0].CorrelationData}, 1s);
    exchange.TakeMessage({Replies, Verdict{"refused"}.ToJson(), false, steps[0].CorrelationData}, 1s);
    EXPECT_EQ(exchange.Verdicts()[0]->Name, "applied");
    exchange.TakeMessage({Replies, "what", false, steps[1].CorrelationData}, 1s);
    EXPECT_EQ(exchange.Verdicts()[1]->Name, CommandExchange::NoReply);
    EXPECT_TRUE(exchange.IsOver());
}

TEST(ConversationTest, ASenderLearnsWhyNobodyReplies)
{
    struct Case
    {
        std::string Topic; // of the step with the code
        std::uint8_t Code;
        std::string Name;
        std::string Expected;
    };

    for (const auto& [topic, code, name, expected] :
         {Case{Replies, Answer::NotAuthorized, "not-sent", "not-authorized"},
          Case{Plant.Commands(), Answer::NotAuthorized, "not-sent", "not-authorized"},
          Case{Plant.Commands(), 0x97, "not-sent", "broker-refuses"},
          Case{Plant.Commands(), Answer::NoMatchingSubscribers, "not-sent", "no-agent"}, Case{"", 0, "no-reply", ""}})
    {
        SCOPED_TRACE(expected);
        ScriptedBroker broker;
        broker.Code = [topic = topic, code = code](const Conversation::Step& step) {
            return step.Topic == topic ? code : std::uint8_t{0};
        };
        CommandExchange exchange(Plant, "ann", "token", TwoRenames(), 2s);
        broker.Hold(exchange);
        EXPECT_EQ(exchange.Verdicts()[1]->Name, name);
        EXPECT_EQ(exchange.Verdicts()[1]->Code, expected);
        EXPECT_EQ(exchange.HasSent(), topic != Replies);
        EXPECT_TRUE(broker.Published.empty() || broker.Published[0].ExpirySeconds == 2U);
    }
}

TEST(ConversationTest, EverythingOfASiteGoesThoughABrokerGivesSomeOfItAtATime)
{
    ScriptedBroker broker;
    Manifest::Revisions revisions;
    for (int i = 10; i < 60; ++i)
    {
        const std::string id = "02-00-00-00-00-" + std::to_string(i);
        revisions.emplace(id, "r");
        broker.Retained[Plant.Device(id)] = "record";
        broker.Retained["discovery/v1/plant-10/devices/" + id] = "record of another site";
    }
    broker.Retained[Plant.Manifest()] = Manifest::Write(revisions)[0].Json;
    broker.Retained[Plant.State()] = "whatever";
    broker.Retained[Plant.Prefix() + "devices/nonsense/#"] = "what somebody else has left";
    RetainedRemoval removal(Plant.Prefix());
    broker.Hold(removal);
    EXPECT_EQ(broker.Retained.size(), 50U);
    EXPECT_EQ(removal.Left(), 0U);
    EXPECT_EQ(removal.Trouble(), "");

    broker.Limit = 0; // nothing comes of what the user may not read
    broker.Retained["discovery/check/ann/7"] = ".";
    RetainedRemoval blind("discovery/check/ann/", {"discovery/check/ann/7"});
    broker.Hold(blind);
    EXPECT_EQ(broker.Retained.size(), 50U);
}

TEST(ConversationTest, WhatIsLeftOfASiteIsTold)
{
    ScriptedBroker broker;
    broker.Retained = {{Plant.Device("02-00-00-00-00-01"), "record"}, {Plant.State(), "state"}};
    broker.Code = [&](const Conversation::Step& step) -> std::uint8_t {
        broker.Retained[Plant.State()] = "an agent that is still there";
        return step.Kind == Kind::Publish && step.Topic != Plant.State() ? Answer::NotAuthorized : 0;
    };
    RetainedRemoval refused(Plant.Prefix());
    broker.Hold(refused);
    EXPECT_EQ(broker.Published.size(), 1U) << "brokers break the connection after the first refusal";
    EXPECT_EQ(std::pair(refused.Removed(), refused.Left()), std::pair(std::size_t{0}, std::size_t{2}));
    EXPECT_EQ(refused.Trouble(), Plant.Device("02-00-00-00-00-01") + ": no");

    broker.Retained.erase(Plant.Device("02-00-00-00-00-01"));
    RetainedRemoval endless(Plant.Prefix());
    broker.Hold(endless);
    EXPECT_EQ(endless.Left(), 1U);
    EXPECT_EQ(endless.Trouble(), Plant.State() + ": somebody goes on writing it");
}

TEST(ConversationTest, TheSettingThatIsWrongIsNamed)
{
    const auto settings = [](const BrokerObservations& observations) {
        Settings names;
        for (const BrokerFinding& each : BrokerFinding::Of(observations, "ann"))
        {
            names.push_back(each.Setting + (each.IsFatal ? "!" : ""));
        }
        return names;
    };
    const Answer unauthorized{0, Answer::NotAuthorized, "no"};
    EXPECT_EQ(settings({.ReceivedSmall = 2000, .ReceivedRecords = 2000}), Settings{});
    EXPECT_EQ(settings({.ReceivedSmall = 1020, .ReceivedRecords = 1020}), Settings{"max_queued_messages"});
    EXPECT_EQ(settings({.ReceivedSmall = 2000, .ReceivedRecords = 900}), Settings{"max_queued_bytes"});
    EXPECT_EQ(settings({.ReceivedSmall = 1020, .ReceivedRecords = 900}),
              (Settings{"max_queued_messages", "max_queued_bytes"}));
    EXPECT_EQ(settings({.ReceivedSmall = 0}), Settings{"acl_file!"});
    EXPECT_EQ(settings({.Refusal = unauthorized}), Settings{"acl_file!"});
    EXPECT_EQ(settings({.Refusal = Answer{0, 0x95, "large"}}), Settings{"message_size_limit!"});
    EXPECT_EQ(settings({.Refusal = Answer{0, 0x97, "quota"}}), Settings{"!"});
    EXPECT_EQ(settings({.LargestRefusal = Answer{0, 0x95, "large"}}), Settings{"message_size_limit!"});
    EXPECT_EQ(settings({.Limits = {.KeepsRetained = false}}), Settings{"retain_available!"});
    EXPECT_EQ(settings({.Limits = {.MaximumPacketBytes = 20000}}), Settings{"max_packet_size!"});
}

TEST(ConversationTest, ProbesAreWrittenUntilTheFirstRefusalAndCountedWhenTheyAreRead)
{
    ScriptedBroker broker;
    ProbeWriting writing(Probes::Topics("ann"), Probes::SmallBytes);
    broker.Hold(writing);
    broker.Retained[Probes::LargestTopic("ann")] = "large";
    broker.Limit = 1020;
    ProbeReading reading("ann");
    broker.Hold(reading);
    EXPECT_EQ(reading.Received(), 1020U);

    ScriptedBroker refusing;
    refusing.Code = [](auto&) { return Answer::NotAuthorized; };
    ProbeWriting refused(Probes::Topics("ann"), Probes::SmallBytes);
    refusing.Hold(refused);
    EXPECT_EQ(refusing.Published.size(), 1U);
    EXPECT_TRUE(refused.Refusal());

    ProbeWriting tooLarge({Probes::LargestTopic("ann")}, Probes::LargestBytes);
    tooLarge.TakeLimits({.MaximumPacketBytes = 20000});
    EXPECT_TRUE(tooLarge.Advance(0s).empty());
    EXPECT_TRUE(tooLarge.IsOver());
}
} // namespace
