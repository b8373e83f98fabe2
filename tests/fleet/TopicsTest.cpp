#include "Fleet/Topics.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Fleet;

namespace
{
TEST(TopicsTest, EveryTopicOfASiteIsReadBackAsWhatItIs)
{
    using Kind = Topic::TopicKind;
    const SiteTopics topics("plant-1.hall_B");

    const struct
    {
        std::string Text;
        Topic Expected;
    } cases[] = {
        {topics.State(), {Kind::State, topics.Site()}},
        {topics.Manifest(), {Kind::Manifest, topics.Site()}},
        {topics.ManifestPart(12), {Kind::Manifest, topics.Site(), 12}},
        {topics.Device("02-00-00-00-00-0a"), {Kind::Device, topics.Site(), 0, "02-00-00-00-00-0a"}},
        {topics.Events(), {Kind::Events, topics.Site()}},
        {topics.Commands(), {Kind::Commands, topics.Site()}},
        {topics.Replies("ann") + "1/2", {Kind::Reply, topics.Site(), 0, "", "ann"}},
    };

    for (const auto& each : cases)
    {
        SCOPED_TRACE(each.Text);
        const std::optional<Topic> topic = Topic::Parse(each.Text);
        ASSERT_TRUE(topic);
        EXPECT_EQ(topic->Kind, each.Expected.Kind);
        EXPECT_EQ(topic->Site, each.Expected.Site);
        EXPECT_EQ(topic->Part, each.Expected.Part);
        EXPECT_EQ(topic->Device, each.Expected.Device);
        EXPECT_EQ(topic->Client, each.Expected.Client);
    }
}

TEST(TopicsTest, OtherTopicsAndNamesOfSitesAreRefused)
{
    for (const char* text :
         {"", "discovery/v1/", "discovery/v1/a", "discovery/v2/a/state", "discovery/v1//state", "discovery/v1/a/state/",
          "discovery/v1/a/manifest/0", "discovery/v1/a/manifest/01", "discovery/v1/a/manifest/1x",
          "discovery/v1/a/manifest/99999999999999999999", "discovery/v1/a/devices/02-00-00-00-00-0A",
          "discovery/v1/a/devices/02:00:00:00:00:0a", "discovery/v1/a/devices/02-00-00-00-00", "discovery/v1/+/state"})
    {
        EXPECT_FALSE(Topic::Parse(text)) << text;
    }
    for (const char* site : {"", "a/b", "+", "#", "a b", "werk\xC3\xA4", "$SYS"})
    {
        EXPECT_THROW(SiteTopics{site}, std::invalid_argument) << site;
    }
    EXPECT_FALSE(SiteTopics::IsName(std::string(65, 'a')));
}

TEST(TopicsTest, RepliesGoToTheOwnTopicsOfAClientAlone)
{
    const SiteTopics topics("a");
    EXPECT_EQ(topics.ReplyClient("discovery/v1/a/replies/ann/42"), "ann");
    for (const char* topic :
         {"", "discovery/v1/a/replies/ann", "discovery/v1/a/replies//x", "discovery/v1/b/replies/ann/1",
          "discovery/v1/a/devices/02-00-00-00-00-01", "discovery/v1/a/replies/ann/+", "discovery/v1/a/replies/ann/#",
          "discovery/v1/a/state", "elsewhere"})
    {
        EXPECT_FALSE(topics.ReplyClient(topic)) << topic;
    }
}

TEST(TopicsTest, AddressesBecomeIdsAndBack)
{
    EXPECT_EQ(DeviceId::FromMAC("02:AB:00:00:00:0F"), "02-ab-00-00-00-0f");
    EXPECT_EQ(DeviceId::ToMAC("02-ab-00-00-00-0f"), "02:AB:00:00:00:0F");
    EXPECT_FALSE(DeviceId::FromMAC("02:ab:00:00:00:0f")); // the library writes capitals
    EXPECT_FALSE(DeviceId::FromMAC(""));
    EXPECT_FALSE(DeviceId::ToMAC("../../../../state"));
}
} // namespace
