#include "BrokerPublisher.h"

#include "Log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

using namespace Zent::Discovery;
using namespace Zent::Discovery::Agent;
using namespace std::chrono_literals;
using Broker::BrokerNews;
using Fleet::DeviceRecord;
using Fleet::SiteState;
using Kind = BrokerNews::NewsKind;

namespace
{
/// Keeps what is published, and tells the publisher what the test wants.
class FakeBroker final : public Broker::IBroker
{
public:
    std::optional<int> Publish(const Broker::Publication& publication) override
    {
        Sent.push_back(publication);
        return static_cast<int>(Sent.size());
    }

    std::optional<int> Subscribe(const std::string& filter) override
    {
        Subscribed.push_back(filter);
        return 0;
    }

    void Unsubscribe(const std::string& /*filter*/) override {}

    std::vector<Broker::Publication> Sent;
    std::vector<std::string> Subscribed;
};

class BrokerPublisherTest : public testing::Test, private ISitePublisher::IListener
{
protected:
    /// Lets that time pass after these news.
    void Go(Inventory::Time time, std::deque<BrokerNews> more = {})
    {
        news = std::move(more);
        publisher.Advance(now);
        now += time;
        publisher.Advance(now);
    }

    /// A connection to a broker that has nothing.
    void Connect() { Go(4s, {{Kind::Connected}, {Kind::Subscribed, 0}}); }

    void AcknowledgeAll()
    {
        for (; acknowledged < broker.Sent.size(); ++acknowledged)
        {
            Go(0s, {{Kind::Delivered, static_cast<int>(acknowledged + 1)}});
        }
    }

    BrokerNews Message(const std::string& topic, const std::string& payload, bool isRetained = false) const
    {
        return {Kind::Received, 0, "", {topic, payload, isRetained}};
    }

    BrokerNews StateOf(SiteState::StateKind kind,
                       const std::string& agent,
                       Fleet::WallTime started,
                       bool isRetained) const
    {
        return Message(topics.State(), SiteState{kind, agent, "machine", started}.ToJson(), isRetained);
    }

    /// How many messages went to that topic, and what the last one was.
    std::pair<std::size_t, std::string> SentTo(const std::string& topic) const
    {
        std::pair<std::size_t, std::string> sent;
        for (const Broker::Publication& each : broker.Sent)
        {
            if (each.Topic == topic)
            {
                ++sent.first;
                sent.second = each.Payload;
            }
        }
        return sent;
    }

    void Put(const std::string& id)
    {
        publisher.PublishRecord(id, {DeviceRecord::DeviceState::Present, "{}", Started});
    }

    static constexpr Fleet::WallTime Started{std::chrono::sys_days(std::chrono::year(2026) / 3 / 1)};

    const Fleet::SiteTopics topics{"a"};
    FakeBroker broker;
    std::ostringstream lines;
    Log log{lines, Log::LogLevel::Info, false};
    std::deque<BrokerNews> news;
    std::size_t acknowledged = 0;
    Inventory::Time now{0};
    BrokerPublisher publisher{topics,
                              {SiteState::StateKind::Ready, "own", "machine", Started},
                              false,
                              broker,
                              [this] { return std::exchange(news, {}); },
                              *this,
                              log};

private:
    void TakeCommand(const Fleet::CommandMessage& /*message*/) override {}

    void TakeUnclaimed(const std::string& /*id*/, const std::optional<DeviceRecord>& /*record*/) override {}
};

TEST_F(BrokerPublisherTest, TheManifestTellsWhatTheBrokerHasTakenAndNothingThatItRefuses)
{
    publisher.BeReady();
    Put("02-00-00-00-00-01");
    Put("02-00-00-00-00-02");
    Connect();
    ASSERT_EQ(broker.Sent.size(), 2u);
    EXPECT_EQ(SentTo(topics.State()).first, 0u);
    Go(1s, {{Kind::Refused, 1, "not authorized"}, {Kind::Delivered, 2}});
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 1u);
    const std::string manifest = SentTo(topics.Manifest()).second;
    EXPECT_EQ(manifest.find("02-00-00-00-00-01"), std::string::npos);
    EXPECT_NE(manifest.find("02-00-00-00-00-02"), std::string::npos);
    EXPECT_NE(SentTo(topics.State()).second.find("ready"), std::string::npos);
    Go(0s, {{Kind::Disconnected, 0, "lost"}}); // as some brokers do upon it
    EXPECT_EQ(publisher.Status().Text,
              "no broker: lost, 1 refused by the broker: discovery/v1/a/devices/02-00-00-00-00-01: not authorized");
}

TEST_F(BrokerPublisherTest, TheOwnManifestMayComeOverASlowLine)
{
    Fleet::Manifest::Revisions revisions;
    for (unsigned i = 0; i <= 3 * Fleet::Manifest::PartDevices; ++i)
    {
        std::array<char, 24> id{};
        std::snprintf(id.data(), id.size(), "02-00-00-00-%02x-%02x", i >> 8U, i & 255U);
        revisions.emplace(id.data(), "r");
    }
    std::vector<Fleet::Manifest::Document> documents = Fleet::Manifest::Write(revisions);
    std::rotate(documents.begin(), documents.end() - 1, documents.end()); // the manifest itself comes first
    Go(0s, {{Kind::Connected}, {Kind::Subscribed, 0}});
    for (const auto& [part, text] : documents)
    {
        Go(2s, {Message(part == 0 ? topics.Manifest() : topics.ManifestPart(part), text, true), {Kind::Subscribed, 0}});
    }
    EXPECT_TRUE(publisher.HasRecord(revisions.rbegin()->first));
}

TEST_F(BrokerPublisherTest, TheWillOfAnEarlierConnectionDoesNotLast)
{
    publisher.BeReady();
    Connect();
    ASSERT_EQ(SentTo(topics.State()).first, 1u);
    Go(1s, {StateOf(SiteState::StateKind::Lost, "own", Started, false)});
    EXPECT_EQ(SentTo(topics.State()).first, 2u);
    EXPECT_NE(SentTo(topics.State()).second.find("ready"), std::string::npos);
}

TEST_F(BrokerPublisherTest, ASiteThatSomebodyRemovesIsPublishedAnewOnceHeIsThroughWithIt)
{
    publisher.BeReady();
    Put("02-00-00-00-00-01");
    Connect();
    AcknowledgeAll();
    const std::size_t manifests = SentTo(topics.Manifest()).first;
    Go(4s, {Message(topics.State(), "")});
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 1u);
    Go(4s);
    AcknowledgeAll();
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 2u);
    EXPECT_GT(SentTo(topics.Manifest()).first, manifests);
    EXPECT_EQ(SentTo(topics.State()).first, 2u);
}

TEST_F(BrokerPublisherTest, AnAgentThatIsGoneWithoutAWordHoldsUpNobody)
{
    publisher.BeReady();
    Put("02-00-00-00-00-01");
    Go(4s, {{Kind::Connected}, {Kind::Subscribed, 0}, StateOf(SiteState::StateKind::Ready, "old", Started - 1h, true)});
    EXPECT_EQ(SentTo(topics.State()).first, 1u); // asks whether the other one is there
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 0u);
    Go(2s);
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 1u);
    EXPECT_EQ(lines.str().find("another agent"), std::string::npos);
}

TEST_F(BrokerPublisherTest, OfTwoAgentsTheLaterOnePublishesNothingAndGoesOnAfterTheFirst)
{
    publisher.BeReady();
    Connect();
    Go(1s, {StateOf(SiteState::StateKind::Ready, "first", Started - 1h, false)});
    const std::size_t states = SentTo(topics.State()).first;
    Put("02-00-00-00-00-01");
    Go(60s, {StateOf(SiteState::StateKind::Ready, "first", Started - 1h, false)});
    EXPECT_EQ(SentTo(topics.State()).first, states); // the two do not answer each other for ever
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 0u);
    Go(4s, {StateOf(SiteState::StateKind::Lost, "first", Started - 1h, false), {Kind::Subscribed, 0}});
    AcknowledgeAll();
    EXPECT_EQ(SentTo(topics.Device("02-00-00-00-00-01")).first, 1u);
    EXPECT_NE(SentTo(topics.State()).second.find("own"), std::string::npos);
}

TEST_F(BrokerPublisherTest, WhatOthersWriteToTheTopicsOfASiteIsLeftOut)
{
    Connect();
    const std::size_t sent = broker.Sent.size();
    for (const std::string& topic :
         {topics.State(), topics.Manifest(), topics.ManifestPart(7), topics.Commands(),
          topics.Device("02-00-00-00-00-01"), std::string("discovery/v1/b/state"), std::string("x")})
    {
        Go(1s, {Message(topic, "{\"\xFF"), Message(topic, "", true)});
    }
    EXPECT_EQ(broker.Sent.size(), sent);
}
} // namespace
