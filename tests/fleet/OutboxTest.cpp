#include "Fleet/Outbox.h"

#include <gtest/gtest.h>

using namespace Zent::Discovery::Fleet;

namespace
{
std::vector<std::string> SendAll(Outbox& outbox)
{
    std::vector<std::string> sent;
    while (const std::optional<Outbox::Record> record = outbox.Next())
    {
        sent.push_back(record->Id + "=" + record->Text);
        outbox.Settle(record->Id);
    }
    return sent;
}

using Texts = std::vector<std::string>;

TEST(OutboxTest, OfEachDeviceTheNewestRecordWaitsAndNoOther)
{
    Outbox outbox;
    outbox.Put("a", "1", "old");
    outbox.Put("a", "2", "new");
    outbox.Put("b", "1", "text");
    EXPECT_EQ(outbox.Waiting(), 2u);
    EXPECT_EQ(SendAll(outbox), (Texts{"a=new", "b=text"}));
    EXPECT_EQ(outbox.There(), (Manifest::Revisions{{"a", "2"}, {"b", "1"}}));
    outbox.Put("a", "2", "new"); // nothing has changed
    EXPECT_EQ(outbox.Waiting(), 0u);
}

TEST(OutboxTest, ARecordWaitsWhileAnOlderOneOfItsDeviceIsUnderWay)
{
    Outbox outbox;
    outbox.Put("a", "1", "old");
    ASSERT_EQ(outbox.Next()->Text, "old");
    outbox.Put("a", "2", "new");
    EXPECT_FALSE(outbox.Next());
    outbox.Settle("a");
    EXPECT_EQ(outbox.There().at("a"), "1");
    ASSERT_EQ(outbox.Next()->Text, "new");
    outbox.Remove("a");
    outbox.Settle("a");
    EXPECT_EQ(outbox.Next()->Text, "");
    outbox.Settle("a");
    EXPECT_TRUE(outbox.There().empty());
    EXPECT_EQ(outbox.Waiting(), 0u);
}

TEST(OutboxTest, AfterAReconnectOnlyTheDifferenceIsSent)
{
    Outbox outbox;
    for (const char* id : {"a", "b", "c", "gone"})
    {
        outbox.Put(id, "1", "text");
    }
    SendAll(outbox);
    outbox.Put("b", "2", "changed");
    outbox.Next(); // and its acknowledgement never comes
    outbox.Remove("gone");
    outbox.Put("d", "1", "appeared");
    outbox.Synchronize({{"a", "1"}, {"b", "1"}, {"gone", "1"}, {"stranger", "9"}}); // c was lost
    EXPECT_EQ(SendAll(outbox), (Texts{"b=changed", "c=text", "d=appeared", "gone="}));
    EXPECT_EQ(outbox.Unclaimed(), Texts{"stranger"});
    outbox.Remove("stranger");
    EXPECT_EQ(SendAll(outbox), Texts{"stranger="});

    outbox.Synchronize({}); // the broker has lost everything
    EXPECT_EQ(SendAll(outbox), (Texts{"a=text", "b=changed", "c=text", "d=appeared"}));
}

TEST(OutboxTest, NoMoreAreUnderWayThanTheWindowHolds)
{
    Outbox outbox;
    for (std::size_t i = 0; i < Outbox::Window + 10; ++i)
    {
        outbox.Put(std::to_string(i), "1", "text");
    }
    std::size_t sent = 0;
    while (outbox.Next())
    {
        ++sent;
    }
    EXPECT_EQ(sent, Outbox::Window);
    EXPECT_EQ(outbox.Waiting(), Outbox::Window + 10);
}
} // namespace
