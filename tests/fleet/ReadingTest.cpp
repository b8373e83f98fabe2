#include "Fleet/FleetReading.h"
#include "Fleet/FleetRecords.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>

using namespace Zent::Discovery::Fleet;
using namespace std::chrono_literals;
using Scope = SiteReading::ReadingScope;
using Step = Conversation::Step;
using Kind = Step::StepKind;

namespace
{
using Texts = std::vector<std::string>;

const std::string NoManifest = ", no manifest, so that nobody knows how many devices it has";

std::string Id(std::size_t number)
{
    char id[64];
    std::snprintf(id, sizeof(id), "02-00-00-00-%02zx-%02zx", number / 256, number % 256);
    return id;
}

DeviceRecord Record(const std::string& name = "press")
{
    return {DeviceRecord::DeviceState::Present, R"({"HostName":")" + name + R"("})", {}};
}

std::string StateText(SiteState::StateKind kind)
{
    return SiteState{kind, "a", "m", {}}.ToJson();
}

/// A broker that gives a subscriber no more than so many retained messages at once.
class CuttingBroker final
{
public:
    explicit CuttingBroker(FleetReading& reading)
        : reading(reading)
    {
    }

    /// Retains the text, and lets whoever has subscribed have it.
    void Put(const std::string& topic, const std::string& text, bool isRetained = true)
    {
        text.empty() ? (void)retained.erase(topic)
                     : (void)(isRetained && retained.insert_or_assign(topic, text).second);
        if (!IsDropping && std::ranges::any_of(subscribed, [&](const auto& each) { return Matches(topic, each); }))
        {
            reading.Take(topic, text, false, now);
        }
    }

    /// Retains the text, and nobody gets it.
    void Drop(const std::string& topic, const std::string& text)
    {
        IsDropping = true;
        Put(topic, text);
        IsDropping = false;
    }

    void PutManifest(const std::string& name, const Manifest::Revisions& revisions)
    {
        const SiteTopics topics(name);
        for (const Manifest::Document& each : Manifest::Write(revisions))
        {
            Put(each.Part == 0 ? topics.Manifest() : topics.ManifestPart(each.Part), each.Json);
        }
    }

    void PutSite(const std::string& name, std::size_t count, const DeviceRecord& record = Record())
    {
        const SiteTopics topics(name);
        Put(topics.State(), StateText(SiteState::StateKind::Ready));
        Manifest::Revisions revisions;
        for (std::size_t i = 0; i < count; ++i)
        {
            revisions.emplace(Id(i), record.Revision());
            Put(topics.Device(Id(i)), record.ToJson());
        }
        PutManifest(name, revisions);
    }

    void Forget(const std::string& name)
    {
        for (const auto& [topic, text] : std::map(retained))
        {
            if (topic.starts_with(SiteTopics(name).Device("").substr(0, 13 + name.size())))
            {
                Put(topic, "");
            }
        }
    }

    void BreakConnection()
    {
        subscribed.clear();
        reading.Disconnect();
    }

    void LoseAll() { retained.clear(); }

    /// Lets the reading go on for so long, or until it is over; nothing takes any time but silence.
    void Serve(std::optional<SiteReading::Time> duration = {})
    {
        const SiteReading::Time end = now + duration.value_or(1h);
        while (duration ? now < end : !reading.IsOver())
        {
            bool isAnswered = false;
            for (const Step& step : reading.Advance(now))
            {
                step.Kind == Kind::Unsubscribe ? subscribed.erase(step.Topic) : subscribed.insert(step.Topic).second;
                const auto isQuestion = [](const std::string& each) { return each.find("/devices/0") < each.size(); };
                MostAsked = std::max(MostAsked, std::size_t(std::ranges::count_if(subscribed, isQuestion)));
                isAnswered = (step.Kind == Kind::Subscribe && Answer({step.Topic})) || isAnswered;
                isAnswered = (step.Kind == Kind::Search && Answer({step.Topic, step.EndMark})) || isAnswered;
            }
            if (!isAnswered && !reading.IsOver())
            {
                ASSERT_GT(reading.NextTime(), now);
            }
            now = isAnswered ? now : std::min(end, reading.NextTime());
            ASSERT_TRUE(duration || now < end) << "it never ends";
        }
    }

    std::size_t Limit = 1000;
    std::size_t RecordsGiven = 0; // that were there before
    std::size_t MostAsked = 0;    // for records alone, at a time
    bool IsDropping = false;      // what is published
    SiteReading::Time now{0};

private:
    static bool Matches(const std::string& topic, const std::string& filter)
    {
        const std::size_t wildcard = filter.find('+');
        return wildcard == std::string::npos
                   ? topic == filter
                   : topic.starts_with(filter.substr(0, wildcard)) && topic.ends_with(filter.substr(wildcard + 1));
    }

    bool Answer(const Texts& filters)
    {
        std::size_t given = 0;
        for (const std::string& filter : filters)
        {
            for (const auto& [topic, text] : retained)
            {
                if (Matches(topic, filter) && given++ < Limit)
                {
                    RecordsGiven += std::size_t(topic.find("/devices/") < topic.size());
                    reading.Take(topic, text, true, now);
                }
            }
        }
        return given > 0;
    }

    FleetReading& reading;
    std::map<std::string, std::string> retained;
    std::set<std::string> subscribed;
};

/// Writes down what a reading finds.
class Notes final : public ReadingListener
{
public:
    /// What has been written since.
    Texts Take() { return std::exchange(notes, {}); }

    void TakeSite(const SiteReading& site) override
    {
        notes.push_back(site.Site() + " " + site.StateName() + (site.Text().empty() ? "" : ", " + site.Text()));
    }

    void TakeForgotten(const std::string& site) override { notes.push_back(site + " is forgotten"); }

    void TakeRecord(const std::string& site, const std::string& id, const DeviceRecord& record) override
    {
        notes.push_back(site + " " + id.substr(15) + " " + record.StateName() + record.Host());
    }

    void TakeRemoval(const std::string& site, const std::string& id) override
    {
        notes.push_back(site + " " + id.substr(15) + " is removed");
    }

    void TakeEvent(const SiteEvent& event) override { notes.push_back(event.Site + " " + event.Kind); }

private:
    Texts notes;
};

/// A reading with its broker and its listener.
template <class TListener>
struct Fixture
{
    explicit Fixture(Scope scope, const Texts& sites = {})
        : Reading(sites, scope, Found)
    {
    }

    TListener Found;
    FleetReading Reading;
    CuttingBroker Broker{Reading};
};

TEST(ReadingTest, WhatABrokerHasDroppedIsAskedForTopicByTopic)
{
    Fixture<FleetRecords> fixture(Scope::Devices);
    fixture.Broker.PutSite("a", 3000);
    fixture.Broker.PutSite("b", 2);
    fixture.Broker.Serve();
    EXPECT_EQ(fixture.Reading.Sites().size(), 2U);
    EXPECT_EQ(fixture.Found.Of("a").size(), 3000U);
    EXPECT_EQ(fixture.Found.Of("b").size(), 2U);
    EXPECT_TRUE(fixture.Reading.Shortfalls().empty());
    EXPECT_EQ(fixture.Broker.MostAsked, FleetReading::MaximumQuestions);
}

TEST(ReadingTest, NothingThatIsCutPassesForWhole)
{
    Fixture<FleetRecords> fixture(Scope::Devices, {"b", "c", "d", "b", "e"});
    CuttingBroker& broker = fixture.Broker;
    broker.PutSite("b", 1002);
    const SiteTopics topics("b");
    broker.Put(topics.Device(Id(7)), "no record");
    broker.Put(topics.Device(Id(8)), "");
    broker.Put(SiteTopics("c").State(), "what is that");
    broker.PutSite("d", 2001);
    broker.Put(SiteTopics("d").ManifestPart(2), "{}");
    const std::string host = R"({"A":")" + std::string(DeviceRecord::MaximumHostBytes - 8, 'a') + R"("})";
    broker.PutSite("e", 1026, DeviceRecord(DeviceRecord::DeviceState::Present, host, {}));
    broker.Serve();
    EXPECT_EQ(fixture.Reading.Shortfalls(), (Texts{"site b: 1000 of 1002 received",
                                                   "site c: no manifest, so that nobody knows how many devices it has",
                                                   "site d: 1001 of 2001 received", "site e: 1024 of 1026 received"}));
    EXPECT_STREQ(std::next(fixture.Reading.Sites().begin())->StateName(), "unknown");
}

TEST(ReadingTest, ARecordThatIsNotTheOneOfTheManifestIsAskedForAloneAndOthersAreLeftOut)
{
    Fixture<FleetRecords> fixture(Scope::Devices, {"b"});
    fixture.Broker.PutSite("b", 3);
    const DeviceRecord gone(DeviceRecord::DeviceState::Gone, "{}", {});
    fixture.Broker.Put(SiteTopics("b").Device(Id(1)), gone.ToJson());
    fixture.Broker.Put(SiteTopics("b").Device(Id(99)), gone.ToJson());
    fixture.Broker.Serve();
    EXPECT_TRUE(fixture.Reading.Shortfalls().empty());
    ASSERT_EQ(fixture.Found.Of("b").size(), 3U);
    EXPECT_STREQ(fixture.Reading.Sites().front().StateNameOf(fixture.Found.Of("b").at(Id(1))), "gone");
}

TEST(ReadingTest, SummariesOfManySitesTakeNoRecordsAndAreBelievedToBeAllIfTheyAre)
{
    for (const auto& [limit, count] : {std::pair(1000U, 1100U), {100U, 101U}, {100U, 99U}, {2000U, 1500U}})
    {
        Fixture<Notes> fixture(Scope::Summary);
        fixture.Broker.Limit = limit;
        for (unsigned i = 0; i < count; ++i)
        {
            fixture.Broker.PutSite("site-" + std::to_string(i), 1);
        }
        fixture.Broker.Serve();
        EXPECT_EQ(fixture.Reading.Sites().size(), std::min(limit, count));
        EXPECT_EQ(fixture.Reading.Sites().front().Expected(), 1U);
        EXPECT_EQ(std::ranges::count(fixture.Found.Take(), "site-0 ready"), 1);
        EXPECT_EQ(fixture.Reading.Shortfalls().size(), limit < count ? 1U : 0U) << limit;
        EXPECT_EQ(fixture.Broker.MostAsked, 0U);
        EXPECT_EQ(fixture.Broker.RecordsGiven, 0U);
    }
}

TEST(ReadingTest, WhatChangesLaterIsFoundAsItComes)
{
    Fixture<Notes> fixture(Scope::Events);
    auto& [found, reading, broker] = fixture;
    broker.PutSite("b", 1);
    broker.Serve();
    const SiteTopics topics("b");
    EXPECT_EQ(found.Take(), (Texts{"b ready, not read yet", R"(b 00 present{"HostName":"press"})", "b ready"}));

    broker.Put(topics.Device(Id(1)), Record("new").ToJson()); // and its manifest comes later
    broker.PutManifest("b", {{Id(0), Record().Revision()}, {Id(1), Record("new").Revision()}});
    broker.Put(topics.Device(Id(0)), "");
    const SiteEvent event{"b", "1", "gone", Id(0), {}, "{}"};
    broker.Put(topics.Events(), event.ToJson(), false);
    broker.PutManifest("b", {{Id(1), Record("new").Revision()}});
    broker.Put(topics.State(), StateText(SiteState::StateKind::Lost));
    broker.PutSite("c", 0);
    broker.Serve(1min);
    EXPECT_EQ(found.Take(), (Texts{R"(b 01 present{"HostName":"new"})", "b 00 is removed", "b gone", "b lost",
                                   "c ready, not read yet", "c ready"}));
    broker.Forget("b");
    broker.Serve(1s);
    EXPECT_EQ(found.Take(), (Texts{"b 01 is removed", "b unknown", "b unknown" + NoManifest, "b is forgotten"}));
    EXPECT_EQ(reading.Sites().size(), 1U);
    EXPECT_EQ(broker.MostAsked, 0U) << "nothing was in doubt";
}

TEST(ReadingTest, WhatWasDroppedLaterIsAskedForAndSaidAndLookedForAgain)
{
    Fixture<Notes> fixture(Scope::Events, {"b"});
    auto& [found, reading, broker] = fixture;
    broker.PutSite("b", 2);
    broker.Serve();
    found.Take();
    const SiteTopics topics("b");
    broker.Drop(topics.Device(Id(0)), Record("other").ToJson());
    Manifest::Revisions told = {{Id(0), Record("other").Revision()}, {Id(1), Record().Revision()}, {Id(2), "r"}};
    broker.PutManifest("b", told);
    broker.Serve(1min);
    EXPECT_EQ(found.Take(), (Texts{R"(b 00 present{"HostName":"other"})", "b ready, 2 of 3 received"}));

    broker.Drop(topics.Device(Id(2)), Record("late").ToJson());
    told[Id(2)] = Record("late").Revision();
    broker.PutManifest("b", told);
    broker.Serve(1min);
    EXPECT_EQ(found.Take(), (Texts{R"(b 02 present{"HostName":"late"})", "b ready"}));

    broker.IsDropping = true;
    broker.PutSite("b", 1); // and nothing of it comes
    broker.Put(topics.State(), StateText(SiteState::StateKind::Disconnected));
    broker.Serve(SiteReading::CheckInterval);
    EXPECT_EQ(found.Take(),
              (Texts{"b disconnected", "b 01 is removed", "b 02 is removed", R"(b 00 present{"HostName":"press"})"}));
}

TEST(ReadingTest, OverAnotherConnectionOnlyTheDifferenceComes)
{
    Fixture<Notes> fixture(Scope::Events);
    auto& [found, reading, broker] = fixture;
    broker.PutSite("b", 1500);
    broker.Serve();
    found.Take();
    broker.BreakConnection();
    found.Take();
    broker.RecordsGiven = 0;
    const SiteTopics topics("b");
    broker.Put(topics.Device(Id(7)), Record("other").ToJson());
    broker.Put(topics.Device(Id(8)), "");
    Manifest::Revisions told;
    for (std::size_t i = 0; i < 1500; ++i)
    {
        told.emplace(Id(i), Record(i == 7 ? "other" : "press").Revision());
    }
    told.erase(Id(8));
    broker.PutManifest("b", told);
    broker.Serve(1min);
    EXPECT_EQ(found.Take(),
              (Texts{"b ready, not read yet", "b 08 is removed", R"(b 07 present{"HostName":"other"})", "b ready"}));
    EXPECT_EQ(broker.RecordsGiven, 1U);
    broker.Put(topics.Device(Id(9)), Record("late").ToJson());
    EXPECT_EQ(found.Take(), (Texts{R"(b 09 present{"HostName":"late"})"}));

    broker.BreakConnection();
    broker.PutSite("b", 1500, Record("all others"));
    broker.Serve(1min);
    EXPECT_GT(broker.RecordsGiven, 1000U) << "too many to be asked for alone";
    EXPECT_TRUE(reading.Shortfalls().empty());
}

TEST(ReadingTest, ABrokerThatHasLostEverythingTakesNoDeviceAwayBeforeItsAgentIsBack)
{
    Fixture<Notes> fixture(Scope::Events);
    auto& [found, reading, broker] = fixture;
    broker.PutSite("a", 2);
    broker.PutSite("b", 2);
    broker.Serve();
    found.Take();
    broker.LoseAll();
    broker.BreakConnection();
    EXPECT_EQ(found.Take(),
              (Texts{"a unknown, no connection to the broker", "b unknown, no connection to the broker"}));
    broker.Serve(1min);
    EXPECT_EQ(found.Take(), (Texts{"a unknown, not read yet", "b unknown, not read yet", "a unknown" + NoManifest,
                                   "b unknown" + NoManifest}));
    broker.PutSite("b", 2);
    broker.Serve(1min);
    EXPECT_EQ(found.Take(), (Texts{"b ready" + NoManifest, "b ready"}));
    broker.Serve(2 * SiteReading::CheckInterval);
    EXPECT_EQ(found.Take(), (Texts{"a is forgotten"}));
}

TEST(ReadingTest, SitesThatTellOfWhatIsNotThereHoldUpNoOthers)
{
    Fixture<Notes> fixture(Scope::Events);
    auto& [found, reading, broker] = fixture;
    Manifest::Revisions nothing;
    for (std::size_t i = 0; i < 5000; ++i)
    {
        nothing.emplace(Id(i), "r");
    }
    for (const char* name : {"a", "b", "c"})
    {
        broker.PutSite(name, 0);
        broker.PutManifest(name, nothing);
    }
    broker.Serve(20s);
    found.Take();
    broker.PutSite("d", 3000);
    broker.Serve(5s);
    EXPECT_TRUE(std::ranges::count(found.Take(), "d ready") > 0 && reading.Sites().back().Text().empty());
    EXPECT_LE(broker.MostAsked, FleetReading::MaximumQuestions);
}

TEST(ReadingTest, HostileMessagesChangeNothing)
{
    Fixture<Notes> fixture(Scope::Events, {"b"});
    auto& [found, reading, broker] = fixture;
    broker.PutSite("b", 1);
    broker.Serve();
    found.Take();
    const SiteTopics topics("b");
    const SiteEvent foreign{"a", "1", "gone", Id(0), {}, "{}"};
    for (const std::string& text : {std::string("\xFF"), std::string("[]"), foreign.ToJson()})
    {
        for (const std::string& topic :
             {topics.State(), topics.Manifest(), topics.Device(Id(0)), topics.Events(), SiteTopics("c").State()})
        {
            reading.Take(topic, text, false, broker.now);
        }
    }
    reading.Take("discovery/v1/+/state", "", false, broker.now);
    reading.Take(topics.Events(), SiteEvent{"b", "1", "gone", Id(0), {}, "{}"}.ToJson(), true, broker.now);
    reading.Take(topics.Device(Id(1)), "", false, broker.now);
    broker.Serve(1s);
    EXPECT_EQ(found.Take(), Texts());
    EXPECT_EQ(reading.Unreadable(), 13U);
}
} // namespace
