#include "SimulatedNetwork.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Inventory;
using namespace std::chrono_literals;
using DeviceDocuments::Document;
using DeviceDocuments::Nic;
using EventKind = Event::EventKind;
using Kind = DeviceMessage::MessageKind;
using State = DeviceRow::RowState;

namespace
{
/// A session whose host program answers that everything is reachable, and notes what happens.
class TableTest : public testing::Test
{
protected:
    void Feed(const std::string& document, Time time, Kind kind = Kind::Signature)
    {
        session->Feed({kind, document}, time);
        Advance(time);
    }

    void Advance(Time time)
    {
        session->Advance(time);
        while (const auto wish = session->NextWish())
        {
            session->Answer(wish->Id, 1);
        }
        while (const auto event = session->NextEvent())
        {
            told += std::string(event->KindName()) + " " + (event->Subject ? event->Subject->HostName : "");
            told += (event->Contradiction
                         ? " " + event->Contradiction->ToString() + " " + std::to_string(event->Contradiction->Count)
                         : "") +
                    ";";
        }
    }

    /// Lets time pass in steps of the table's own.
    void Pass(Time from, Time to)
    {
        for (Time time = from; time <= to; time = std::max(time + 1ms, std::min(to, session->NextTime())))
        {
            Advance(time);
            ++wakeUps;
        }
    }

    std::string Told() { return std::exchange(told, {}); }

    State StateOf(const char* address) const { return session->Devices().Find(address)->State(); }

    std::optional<Session> session{std::in_place};
    std::size_t wakeUps = 0; // of Pass

private:
    std::string told;
};

TEST_F(TableTest, ADeviceIsGoneOnlyAfterSeveralQuestionsAndBackWithOneAnswer)
{
    const std::string document = Document("a", "02:01", "10.0.0.1");
    Feed(document, 0s);
    Pass(0s, 14s);
    EXPECT_EQ(StateOf("02:01"), State::Present);
    Pass(14s, 16s);
    EXPECT_EQ(StateOf("02:01"), State::Asked);
    Feed(document, 17s);
    EXPECT_EQ(StateOf("02:01"), State::Present);
    EXPECT_EQ(Told(), "Appeared a;");
    Pass(17s, 39s); // eight questions, a second apart, from 32 on
    EXPECT_EQ(StateOf("02:01"), State::Asked);
    Pass(39s, 41s);
    EXPECT_EQ(StateOf("02:01"), State::Gone);
    Feed(Document("b", "02:01", "10.0.0.1"), 60s);
    EXPECT_EQ(Told(), "Gone a;Returned b;");
    const DeviceRow& row = *session->Devices().Find("02:01");
    EXPECT_EQ(row.FirstSeen, 0s);
    EXPECT_EQ(row.LastSeen, 60s);
    EXPECT_EQ(row.Source, "02:01");
    EXPECT_EQ(row.Changes.at(0).What.ToString(), "HostName: a -> b");
    Feed(document, 61s);
    EXPECT_TRUE(row.Changes.empty()); // as it was at first
}

TEST_F(TableTest, ASilentComputerAsksBeforeItBelievesInSilence)
{
    Feed(Document("a", "02:01", "10.0.0.1"), 0s);
    Advance(3600s); // it slept
    EXPECT_EQ(StateOf("02:01"), State::Asked);
    Advance(7200s);
    EXPECT_EQ(StateOf("02:01"), State::Asked);
    EXPECT_EQ(Told(), "Appeared a;");
}

TEST_F(TableTest, WishesThatNobodyTakesDoNotPileUp)
{
    for (Time time{0}; time < 24h; time += 10s)
    {
        session->Feed({Kind::Signature, Document("a", "02:01", "10.0.0.1")}, time);
        session->Advance(time);
    }
    EXPECT_EQ(session->NextWish()->Kind, Wish::WishKind::AskAll);
    EXPECT_FALSE(session->NextWish());
}

TEST_F(TableTest, AddressesOfNobodyAndOfManyAreNotAsked)
{
    for (const char* address : {"0.0.0.0", "224.0.0.1", "255.255.255.255", ""})
    {
        SCOPED_TRACE(address);
        session.emplace();
        session->Feed({Kind::Signature, Document("a", "02:01", address)}, 0s);
        for (Time time{0}; StateOf("02:01") != State::Gone && time < 60s; time += 1s)
        {
            session->Advance(time);
            while (const auto wish = session->NextWish())
            {
                EXPECT_NE(wish->Kind, Wish::WishKind::IsReachable);
            }
        }
        EXPECT_EQ(StateOf("02:01"), State::Gone);
    }
}

TEST_F(TableTest, NobodyIsGoneWhileAnotherProgramHoldsThePort)
{
    Feed(Document("a", "02:01", "10.0.0.1"), 0s);
    session->SetPortHeld(true, 1s);
    session->SetPortHeld(true, 2s);
    Pass(2s, 600s);
    EXPECT_TRUE(session->Devices().Find("02:01")->IsHere());
    EXPECT_EQ(Told(), "Appeared a;PortHeld ;");
    session->SetPortHeld(false, 600s);
    Pass(600s, 605s);
    EXPECT_EQ(Told(), "PortReleased ;");
    Pass(605s, 630s);
    EXPECT_EQ(Told(), "Gone a;");
}

TEST_F(TableTest, NobodyIsAskedOrGoneWhileThisMachineHasNoNetwork)
{
    Feed(Document("a", "02:01", "10.0.0.1"), 0s);
    Pass(0s, 20s);
    session->SetOffline(true, 20s);
    wakeUps = 0;
    Pass(20s, 600s);
    EXPECT_LT(wakeUps, 70u);
    EXPECT_EQ(StateOf("02:01"), State::Stale);
    session->SetOffline(false, 600s);
    Pass(600s, 622s);
    EXPECT_EQ(Told(), "Appeared a;Offline ;Online ;");
    Pass(622s, 624s);
    EXPECT_EQ(Told(), "Gone a;");
}

TEST_F(TableTest, ADeviceThatComesAndGoesIsToldOnce)
{
    const std::string document = Document("a", "02:01", "10.0.0.1");
    Feed(document, 0s);
    for (int i = 0; i < 10; ++i)
    {
        Feed(document, 1s + i * 2s, Kind::Bye);
        Feed(document, 2s + i * 2s);
    }
    EXPECT_EQ(Told(), "Appeared a;Left a;Returned a;Left a;Returned a;Left a;Flapping a;");
    EXPECT_EQ(StateOf("02:01"), State::Flapping);
    for (Time time = 21s; time < 640s; time += 1s)
    {
        Feed(document, time);
    }
    EXPECT_EQ(Told(), "Settled a;");
    EXPECT_EQ(StateOf("02:01"), State::Present);
}

TEST_F(TableTest, InterfacesOfOneDeviceAreOneRow)
{
    const std::string source = R"(,"SourceNIC":)";
    const std::string both = R"({"Host":{"HostName":"a","SerialNumber":"7","NICs":[)" + Nic("02:01", "10.0.0.1") + "," +
                             Nic("02:02", "10.0.0.2") + "]}";
    const std::string alone = Document("a", "02:02", "10.0.0.2", R"("SerialNumber":"7",)");
    Feed(Document("a", "02:01", "10.0.0.1", R"("SerialNumber":"7",)"), 0s);
    Feed(alone, 1s);
    EXPECT_EQ(session->Devices().Size(), 2u); // nothing tells yet
    Told();
    Feed(both + source + Nic("02:02", "10.0.0.2") + "}", 2s);
    Feed(both + source + Nic("02:01", "10.0.0.1") + "}", 3s);
    EXPECT_EQ(Told(), "Forgotten a;Changed a;");
    EXPECT_EQ(session->Devices().Size(), 1u);
    EXPECT_EQ(session->Devices().Rows()[0]->Source, "02:01");
    Feed(R"({"Host":{"HostName":"no interface"}})", 4s);
    Feed(R"({"Host":{"HostName":"no interface"}})", 5s);
    EXPECT_EQ(session->Devices().Size(), 2u);
    EXPECT_THROW(session->Feed({Kind::Hello, "{}"}, 6s), std::invalid_argument);
    EXPECT_EQ(session->Devices().Size(), 2u);
    for (const char* const address : {"02:03", "02:04"}) // two devices that list their loopback interfaces
    {
        Feed(R"({"Host":{"HostName":"b","NICs":[)" + Nic("00:00:00:00:00:00", "127.0.0.1") + "," +
                 Nic(address, "10.0.0.3") + "]}}",
             7s);
    }
    EXPECT_EQ(session->Devices().Size(), 4u);
}

TEST_F(TableTest, ManySilentDevicesAreFewWakeUps)
{
    for (int i = 0; i < 1000; ++i)
    {
        Feed(Document("a", "02:" + std::to_string(i), "10.0.0." + std::to_string(i % 250 + 1)), 0s);
    }
    Pass(0s, 120s);
    EXPECT_EQ(StateOf("02:999"), State::Gone);
    EXPECT_LT(wakeUps, 9000u);
}

TEST_F(TableTest, TheOneLongestUnseenGivesWay)
{
    session.emplace(DeviceTableOptions{.MaximumDevices = 2});
    Feed(Document("a", "02:01", "10.0.0.1"), 0s);
    Feed(Document("b", "02:02", "10.0.0.2"), 1s);
    Feed(Document("a", "02:01", "10.0.0.1"), 2s);
    Feed(Document("c", "02:03", "10.0.0.3"), 3s);
    EXPECT_EQ(Told(), "Appeared a;Appeared b;Forgotten b;Appeared c;");
    EXPECT_EQ(session->Devices().Find("02:02"), nullptr);
    EXPECT_EQ(session->Devices().Size(), 2u);
}

TEST_F(TableTest, TellsConflictsOnceAndOnlyThose)
{
    session.emplace(DeviceTableOptions{.AskEvery = 0s, .AcceptedConflicts = {"ip:10.0.0.8"}});
    const std::string one = Document("a", "02:01", "10.0.0.1", R"("SerialNumber":"1",)");
    const std::string two = Document("b", "02:01", "10.0.0.1", R"("SerialNumber":"2",)");
    Feed(one, 0s);
    Feed(two, 10s); // changed
    EXPECT_EQ(Told(), "Appeared a;Changed b;");
    for (Time time = 20s; time < 60s; time += 20s)
    {
        Feed(one, time);
        Feed(two, time + 10s);
    }
    EXPECT_EQ(Told(), "Changed a;Conflict a mac:02:01 2;Changed b;Changed a;Changed b;");
    Feed(one, 200s); // long after
    EXPECT_EQ(Told(), "Changed a;");

    Feed(Document("c", "02:02", "10.0.0.9"), 201s);
    Feed(Document("d", "02:03", "10.0.0.9"), 202s);
    Feed(Document("d", "02:03", "10.0.0.9"), 203s);
    Feed(Document("e", "02:04", "10.0.0.8"), 204s);
    Feed(Document("f", "02:05", "10.0.0.8"), 205s); // accepted
    EXPECT_EQ(Told(), "Appeared c;Appeared d;Conflict d ip:10.0.0.9 2;Appeared e;Appeared f;");

    Feed(Document("panel", "02:06", "10.0.1.6"), 300s);
    Feed(Document("panel", "02:07", "10.0.1.7"), 300s);
    Feed(Document("panel", "02:08", "10.0.1.8"), 300s + 500ms);
    Advance(302s);
    Feed(Document("panel", "02:09", "10.0.1.9"), 303s);
    Advance(310s);
    EXPECT_EQ(Told(), "Appeared panel;Appeared panel;Appeared panel;Conflict panel name:panel 3;Appeared panel;");
}

TEST(WatchTest, HoursOfLostAnswersMakeNobodyGone)
{
    SimulatedNetwork network({.Devices = 200, .Loss = 0.05});
    Session session;
    network.Run(session, 4h);
    EXPECT_EQ(network.CountOf(EventKind::Appeared), 200u);
    EXPECT_EQ(network.CountOf(EventKind::Gone), 0u);
    EXPECT_GT(network.QuestionsByMAC, 100u); // so losses were noticed
}

TEST(WatchTest, AddressesWithoutRouteAreNeverAsked)
{
    SimulatedNetwork network({.Devices = 5, .ForeignDevices = 50});
    Session session;
    network.Run(session, 5s);
    network.AreSilent = true;
    network.Run(session, 120s);
    EXPECT_EQ(network.Restarts, 0u);
    EXPECT_EQ(network.CountOf(EventKind::Gone), 55u);
    EXPECT_EQ(network.QuestionsByIP, 5u * 4);
    EXPECT_EQ(network.QuestionsByMAC, 5u * 4 + 50 * 8);
    network.AreSilent = false;
    network.Run(session, 11s);
    EXPECT_EQ(network.CountOf(EventKind::Returned), 55u);
}

TEST(WatchTest, ASearchAndTheTableShareTheirQuestions)
{
    SimulatedNetwork network({.Devices = 50});
    Session session;
    session.StartSearch(SimulatedNetwork::Options(), 0s);
    network.Run(session, 20s, [&session] { return session.SearchState()->IsOver; });
    EXPECT_EQ(network.Broadcasts, session.SearchState()->Rounds.size());
    EXPECT_EQ(network.CountOf(EventKind::RoundEnded), session.SearchState()->Rounds.size());
    EXPECT_EQ(network.CountOf(EventKind::SearchEnded), 1u);
    EXPECT_EQ(session.Devices().Size(), 50u);
}
} // namespace
