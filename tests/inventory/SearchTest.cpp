#include "Inventory/AddressSweep.h"
#include "SimulatedNetwork.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Inventory;
using namespace std::chrono_literals;
using DeviceDocuments::Document;
using Settings = SimulatedNetwork::Settings;

namespace
{
SearchReport Search(SimulatedNetwork& network, const SearchOptions& options = SimulatedNetwork::Options())
{
    Session session({.AskEvery = 0ms});
    session.StartSearch(options, network.now);
    EXPECT_TRUE(network.Run(session, options.Wait + 1s, [&session] { return session.SearchState()->IsOver; }));
    EXPECT_LE(network.MostUnanswered, 150u);
    EXPECT_EQ(network.Restarts, 0u);
    return *session.SearchState();
}

TEST(SearchTest, FindsAThousandDevicesAndSaysSoWithinTenSeconds)
{
    for (const bool isFast : {true, false})
    {
        for (const auto& [spread, loss] : {std::pair(0.0, 0.0), std::pair(100.0, 0.0), std::pair(500.0, 0.0),
                                           std::pair(500.0, 0.05), std::pair(0.0, 0.2)})
        {
            for (const bool areOrdered : {true, false})
            {
                SimulatedNetwork network({.Spread = spread, .Loss = loss, .IsFast = isFast, .AreOrdered = areOrdered});
                const SearchReport report = Search(network);
                SCOPED_TRACE(report.ToString());
                EXPECT_TRUE(report.Complete);
                EXPECT_EQ(report.Devices, 1000u);
                EXPECT_LE(report.Elapsed, 10s);
                const auto& second = report.Rounds[1];
                EXPECT_EQ(second.Asked == SearchReport::Round::Question::Sweep, report.Rounds[0].Lost > 0u);
            }
        }
    }
}

TEST(SearchTest, NeverSaysTooEarlyThatItIsComplete)
{
    for (const Settings& settings :
         {Settings{.Devices = 20, .Loss = 0.05},
          Settings{.Devices = 300, .Loss = 0.2, .IsFast = false, .BufferSize = 30},
          Settings{.Devices = 300, .ForeignDevices = 20, .IsFast = false, .BufferSize = 30},
          Settings{.Devices = 300, .ForeignDevices = 20, .IsFast = false, .AreOrdered = true, .BufferSize = 30},
          Settings{.Devices = 300, .IsFast = false, .HasCounter = false, .BufferSize = 30},
          Settings{.Devices = 100,
          .ForeignDevices = 20,
          .IsFast = false,
          .HasCounter = false,
          .AreOrdered = true,
          .BufferSize = 30}})
    {
        for (unsigned seed = 1; seed <= 10; ++seed)
        {
            Settings seeded = settings;
            seeded.Seed = seed;
            SimulatedNetwork network(seeded);
            const SearchReport report = Search(network);
            EXPECT_TRUE(!report.Complete || report.Devices == settings.Devices + settings.ForeignDevices)
                << report.ToString();
        }
    }
}

TEST(SearchTest, SeldomMissesOneOfAFewDevicesWhoseAnswersGetLost)
{
    int missed = 0;
    for (unsigned seed = 1; seed <= 1000; ++seed)
    {
        SimulatedNetwork network({.Devices = 20, .Loss = 0.2, .Seed = seed});
        const SearchReport report = Search(network);
        missed += report.Complete && report.Devices < 20 ? 1 : 0;
    }
    EXPECT_LE(missed, 3);
}

/// The report of a search in which the same number of a hundred devices is heard after each question to all.
SearchReport SearchWithTheSame(std::size_t heard, std::int64_t lostEachTime, SearchOptions options = {.Sweep = false})
{
    Session session({.AskEvery = 0ms});
    session.StartSearch(options, 0ms);
    std::int64_t lost = 0;
    for (Time now{0}; !session.SearchState()->IsOver; now += 5ms)
    {
        session.Advance(now);
        EXPECT_EQ(session.SearchState()->Elapsed, now);
        while (const auto wish = session.NextWish())
        {
            session.Answer(wish->Id, wish->Kind == Wish::WishKind::IsReachable ? 1 : lostEachTime < 0 ? -1 : lost);
            lost += wish->Kind == Wish::WishKind::AskAll ? lostEachTime : 0;
            for (std::size_t i = 0; wish->Kind == Wish::WishKind::AskAll && i < heard; ++i)
            {
                session.Feed(
                    {DeviceMessage::MessageKind::Signature, Document("d", "02:" + std::to_string(i), "10.0.0.1")}, now);
            }
        }
    }
    return *session.SearchState();
}

TEST(SearchTest, TheSameDevicesTwiceProveNothingWhereOthersMayBeLost)
{
    EXPECT_FALSE(SearchWithTheSame(56, 44).Complete);
    EXPECT_FALSE(SearchWithTheSame(56, -1).Complete);
    EXPECT_TRUE(SearchWithTheSame(56, 0).Complete);
    EXPECT_TRUE(SearchWithTheSame(39, -1).Complete); // too few at once to fill a receive buffer
    // Nobody else answers one by one, which says nothing where no address can be asked.
    EXPECT_TRUE(SearchWithTheSame(56, -1, {.Networks = {Network::Parse("10.0.0.9/28")}}).Complete);
    EXPECT_FALSE(SearchWithTheSame(56, -1, {.Networks = {Network::Parse("10.9.0.9/28")}}).Complete);
    const SearchReport report = SearchWithTheSame(1, 0);
    EXPECT_TRUE(report.Complete);
    EXPECT_LE(report.Elapsed, 2s);
}

TEST(SearchTest, EndsWhenItIsToldTo)
{
    SearchReport report = SearchWithTheSame(0, 0);
    EXPECT_EQ(report.Elapsed / 100, 30ms); // nobody is there
    EXPECT_FALSE(report.Complete);
    report = SearchWithTheSame(0, 0, {.Wait = 1s});
    EXPECT_EQ(report.Elapsed / 100, 10ms);
    EXPECT_GE(SearchWithTheSame(0, 7).Elapsed, 10s); // somebody is
    report = SearchWithTheSame(56, 0, {.Wait = 5s, .Once = true});
    EXPECT_EQ(report.Rounds.size(), 1u);
    EXPECT_GE(report.Elapsed, 5s);
    EXPECT_LE(SearchWithTheSame(56, 0, {.Once = true, .Expect = 56}).Elapsed, 100ms);
}

TEST(SearchTest, AsksAddressesBehindRoutersOneByOne)
{
    SimulatedNetwork network({.Devices = 20, .ForeignDevices = 30, .IsRouted = true, .Loss = 0.05});
    SearchOptions options = SimulatedNetwork::Options();
    options.Also = {Network::Parse("192.168.0.0/26")};
    const SearchReport report = Search(network, options);
    EXPECT_TRUE(report.Complete);
    EXPECT_EQ(report.Devices, 50u);
    EXPECT_EQ(report.Rounds[1].Asked, SearchReport::Round::Question::List);
    options.Also = {Network::Parse("10.0.0.0/15")};
    Session session;
    EXPECT_THROW(session.StartSearch(options, 0ms), std::invalid_argument);
}

TEST(SearchTest, ReportsForPeopleAndForPrograms)
{
    SearchReport report;
    report.Devices = 1000;
    report.Rounds = {{.Answers = 981, .New = 981, .Lost = 12},
                     {.Asked = SearchReport::Round::Question::Sweep, .Answers = 19, .New = 19, .Lost = 0}};
    report.Complete = true;
    report.Elapsed = 2096ms;
    EXPECT_EQ(
        report.ToString(),
        "1000 devices, 2 rounds: 981, 19 new; 12 answers lost in this machine's receive buffer; estimated unseen: 0");
    EXPECT_EQ(report.ToJson(), R"({"Devices":1000,"Rounds":[{"Asked":"all","Answers":981,"New":981,"Lost":12},)"
                               R"({"Asked":"sweep","Answers":19,"New":19,"Lost":0}],"LostHere":12,)"
                               R"("EstimatedUnseen":0.0,"Complete":true,"Seconds":2.1})");
    report.Rounds[1].Lost.reset();
    EXPECT_NE(report.ToJson().find(R"("LostHere":null)"), std::string::npos);
}

TEST(AddressSweepTest, AsksFirstWhereDevicesAreKnown)
{
    const auto address = [](const char* text) { return *Network::ParseAddress(text); };
    const std::vector<Network> own = {Network::Parse("10.0.0.9/22"), Network::Parse("10.9.0.1/20"),
                                      Network::Parse("10.8.0.1/31")};
    AddressSweep::Addresses known = {address("10.0.2.100"), address("10.0.2.101"), address("10.0.1.7")};
    AddressSweep sweep = AddressSweep::OfNetworks(own, known);
    std::vector<std::string> asked;
    while (const std::optional<IPv4> next = sweep.Next(known))
    {
        asked.push_back(Network::TextOf(*next));
        known.insert(address("10.0.2.103")); // found meanwhile
    }
    EXPECT_EQ(asked.size(), 1024u - 2 - 1 - 4);
    EXPECT_EQ((std::vector<std::string>(asked.begin(), asked.begin() + 3)),
              (std::vector<std::string>{"10.0.2.99", "10.0.2.102", "10.0.2.98"}));
    EXPECT_EQ(asked[253], "10.0.1.6");
    for (const char* never : {"10.0.0.0", "10.0.3.255", "10.0.0.9", "10.0.1.7", "10.0.2.103", "10.9.0.2", "10.8.0.0"})
    {
        EXPECT_EQ(std::ranges::count(asked, never), 0) << never;
    }
}

TEST(NetworkTest, RefusalsNameTheText)
{
    EXPECT_EQ(Network::TextOf(Network::Parse("10.2.1.77/26").Lowest()), "10.2.1.64");
    EXPECT_EQ(Network::TextOf(Network::Parse("10.2.1.77/0").Highest()), "255.255.255.255");
    for (const char* text :
         {"", "10.2.1", "10.2.1.256", "10.2.1.1/33", "10.2.1.1/", "10.2.1.1/2x", "10.2.1.1 ", "press-1", "10.2.1.-1"})
    {
        try
        {
            Network::Parse(text);
            ADD_FAILURE() << text;
        }
        catch (const std::invalid_argument& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with('"' + std::string(text) + '"')) << error.what();
        }
    }
}
} // namespace
