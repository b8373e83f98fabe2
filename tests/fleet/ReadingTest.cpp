#include "Fleet/FleetReading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>

using namespace Zent::Discovery::Fleet;
using namespace std::chrono_literals;
using Scope = SiteReading::ReadingScope;

namespace
{
/// A broker that gives a subscriber no more than so many retained messages at once.
class CuttingBroker final
{
public:
    void Put(const std::string& topic, const std::string& text) { retained[topic] = text; }

    void PutSite(const std::string& name, std::size_t count)
    {
        const SiteTopics topics(name);
        Put(topics.State(), SiteState{SiteState::StateKind::Ready, "a", "m", {}}.ToJson());
        Manifest::Revisions revisions;
        for (std::size_t i = 0; i < count; ++i)
        {
            char id[24];
            std::snprintf(id, sizeof(id), "02-00-00-00-%02zx-%02zx", i / 256, i % 256);
            const DeviceRecord record(DeviceRecord::DeviceState::Present, R"({"HostName":"press"})", {});
            revisions.emplace(id, record.Revision());
            Put(topics.Device(id), record.ToJson());
        }
        for (const Manifest::Document& each : Manifest::Write(revisions))
        {
            Put(each.Part == 0 ? topics.Manifest() : topics.ManifestPart(each.Part), each.Json);
        }
    }

    /// Lets the reading come to its end; nothing takes any time but silence.
    void Serve(FleetReading& reading)
    {
        SiteReading::Time now{0};
        while (!reading.IsOver())
        {
            const std::vector<ReadingRequest> requests = reading.Advance(now);
            bool isAnswered = false;
            for (const ReadingRequest& request : requests)
            {
                request.IsEnd ? subscribed.erase(request.Filter) : subscribed.insert(request.Filter).second;
                MostSubscribed = std::max(MostSubscribed, subscribed.size());
                isAnswered = (!request.IsEnd && Answer(reading, request.Filter, now)) || isAnswered;
            }
            if (!isAnswered && !reading.IsOver())
            {
                ASSERT_GT(reading.NextTime(), now);
                now = reading.NextTime();
                ASSERT_LT(now, 1h) << "it never ends";
            }
        }
        EXPECT_TRUE(subscribed.empty()) << *subscribed.begin();
    }

    std::size_t Limit = 1000;
    std::size_t MostSubscribed = 0; // at a time

private:
    bool Answer(FleetReading& reading, const std::string& filter, SiteReading::Time now) const
    {
        const std::size_t wildcard = filter.find('+');
        const std::string front = filter.substr(0, wildcard);
        const std::string back = wildcard == std::string::npos ? "" : filter.substr(wildcard + 1);
        std::size_t given = 0;
        for (const auto& [topic, text] : retained)
        {
            const bool matches =
                wildcard == std::string::npos ? topic == filter : topic.starts_with(front) && topic.ends_with(back);
            if (matches && given++ < Limit)
            {
                reading.Take(topic, text, now);
            }
        }
        return given > 0;
    }

    std::map<std::string, std::string> retained;
    std::set<std::string> subscribed;
};

TEST(ReadingTest, WhatABrokerHasDroppedIsAskedForTopicByTopic)
{
    CuttingBroker broker;
    broker.PutSite("a", 3000);
    broker.PutSite("b", 2);
    FleetReading reading({}, Scope::Devices);
    broker.Serve(reading);
    ASSERT_EQ(reading.Sites().size(), 2U);
    EXPECT_EQ(reading.Sites().front().Devices().size(), 3000U);
    EXPECT_EQ(reading.Sites().back().Devices().size(), 2U);
    EXPECT_TRUE(reading.Shortfalls().empty());
    EXPECT_LE(broker.MostSubscribed, SiteReading::MaximumAsked + 6); // state, manifest, its parts
}

TEST(ReadingTest, NothingThatIsCutPassesForWhole)
{
    CuttingBroker broker;
    broker.PutSite("b", 1002);
    const SiteTopics topics("b");
    broker.Put(topics.Device("02-00-00-00-00-07"), "no record");
    broker.Put(topics.Device("02-00-00-00-00-08"), "");
    broker.Put(SiteTopics("c").State(), "what is that");
    broker.PutSite("d", 2001);
    broker.Put(SiteTopics("d").ManifestPart(2), "{}");
    FleetReading reading({"b", "c", "d", "b"}, Scope::Devices);
    broker.Serve(reading);
    EXPECT_EQ(reading.Shortfalls(),
              (std::vector<std::string>{"site b: 1000 of 1002 received",
                                        "site c: no manifest, so that nobody knows how many devices it has",
                                        "site d: 1001 of 2001 received"}));
    EXPECT_STREQ(std::next(reading.Sites().begin())->StateName(), "unknown");
}

TEST(ReadingTest, ARecordThatIsNotTheOneOfTheManifestIsAskedForAloneAndOthersAreLeftOut)
{
    CuttingBroker broker;
    broker.PutSite("b", 3);
    const DeviceRecord gone(DeviceRecord::DeviceState::Gone, "{}", {});
    broker.Put(SiteTopics("b").Device("02-00-00-00-00-01"), gone.ToJson());
    broker.Put(SiteTopics("b").Device("02-00-00-00-00-99"), gone.ToJson());
    FleetReading reading({"b"}, Scope::Devices);
    broker.Serve(reading);
    EXPECT_TRUE(reading.Shortfalls().empty());
    const SiteReading& site = reading.Sites().front();
    EXPECT_EQ(site.Devices().size(), 3U);
    EXPECT_STREQ(site.StateNameOf(site.Devices().at("02-00-00-00-00-01")), "gone");
}

TEST(ReadingTest, SummariesOfManySitesTakeNoRecordsAndAreNotBelievedToBeAll)
{
    CuttingBroker broker;
    for (int i = 0; i < 1100; ++i)
    {
        broker.PutSite("site-" + std::to_string(i), 1);
    }
    FleetReading reading({}, Scope::Summary);
    broker.Serve(reading);
    EXPECT_EQ(reading.Sites().size(), 1000U);
    EXPECT_EQ(reading.Sites().front().Expected(), 1U);
    EXPECT_TRUE(reading.Sites().front().Devices().empty());
    ASSERT_EQ(reading.Shortfalls().size(), 1U);
    EXPECT_LE(broker.MostSubscribed, SiteReading::MaximumAsked + 1);
}
} // namespace
