#include "Page/PageModel.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

using namespace Zent::Discovery::Page;
using namespace std::chrono_literals;
using Zent::Discovery::Fleet::DeviceRecord;
using Zent::Discovery::Fleet::SiteEvent;
using Zent::Discovery::Fleet::WallTime;
using Json = nlohmann::json;

namespace
{
const std::string Device = "02-00-00-00-00-01";
const std::string Other = "02-00-00-00-00-02";

DeviceRecord Record(const std::string& host, DeviceRecord::DeviceState state = DeviceRecord::DeviceState::Present)
{
    return {state, host, WallTime()};
}

/// As a viewer understands them: kind and data of each.
std::vector<std::pair<std::string, Json>> Events(const PageModel& model, PageModel::Position& position)
{
    std::vector<std::pair<std::string, Json>> events;
    std::istringstream lines(model.EventsAfter(position, 1000000));
    for (std::string kind, id, data, end; std::getline(lines, kind);)
    {
        std::getline(lines, id);
        std::getline(lines, data);
        std::getline(lines, end);
        EXPECT_EQ(end, "");
        events.emplace_back(kind.substr(7), Json::parse(data.substr(6)));
        EXPECT_EQ(model.Find(id.substr(4)).has_value(), kind != "event: reset" || position == model.Newest());
    }
    return events;
}

Json Document(const PageModel& model, std::size_t bytes)
{
    PageModel::Snapshot snapshot;
    std::string text;
    for (std::string piece; !(piece = model.NextPiece(snapshot, bytes, WallTime())).empty();)
    {
        EXPECT_LE(piece.size(), bytes + 1000);
        text += piece;
    }
    return Json::parse(text);
}

TEST(PageModelTest, AViewerGetsTheLatestOfWhatHasChangedMeanwhileOnce)
{
    PageModel model("a");
    model.SetSite("s", "ready", "");
    model.SetDevice("s", Device, Record(R"({"HostName":"one"})"));
    PageModel::Position position = model.Newest();
    EXPECT_EQ(model.EventsAfter(position, 1000), "");
    model.SetSite("s", "ready", ""); // the same again is no news
    model.SetDevice("s", Other, Record("{}"));
    model.SetDevice("s", Device, Record(R"({"HostName":"two"})"));
    model.RemoveDevice("s", Other);
    model.SetDevice("s", Device, Record(R"({"HostName":"<script>\n"})"));

    const auto events = Events(model, position);
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[0].first, "removed");
    EXPECT_EQ(events[0].second, Json({{"Site", "s"}, {"Device", Other}}));
    EXPECT_EQ(events[1].first, "device");
    EXPECT_EQ(events[1].second["Host"]["HostName"], "<script>\n");
    EXPECT_EQ(position, model.Newest());

    model.SetDevice("s", Other, Record("{}"));
    EXPECT_EQ(Events(model, position).front().first, "device"); // it is back, and no longer removed
}

TEST(PageModelTest, WhoHasMissedMoreThanIsRememberedBeginsAnew)
{
    PageModel model("a");
    model.SetDevice("s", Device, Record("{}"));
    const std::string old = model.EventId(model.Newest());
    PageModel::Position position = model.Newest();
    for (const char* id : {"", "a", "a-", "b-1", "a-2", "a-1x", "a--1", "a-18446744073709551616"})
    {
        EXPECT_FALSE(model.Find(id)) << id;
    }
    for (std::size_t i = 0; i <= PageModel::MaximumRemoved; ++i)
    {
        ASSERT_TRUE(model.Find(old));
        const std::string id = "x" + std::to_string(i);
        model.SetDevice("s", id, Record("{}"));
        model.RemoveDevice("s", id);
    }
    EXPECT_FALSE(model.Find(old));
    EXPECT_EQ(Events(model, position), (std::vector<std::pair<std::string, Json>>{{"reset", Json::object()}}));
}

TEST(PageModelTest, DevicesOfASiteThatIsNotReadyAreUnknownAndGoWithIt)
{
    PageModel model("a");
    model.SetSite("s", "ready", "");
    model.SetDevice("s", Device, Record("{}", DeviceRecord::DeviceState::Flapping));
    model.SetDevice("t", Device, Record("{}"));
    PageModel::Position position = model.Newest();
    model.SetSite("s", "lost", "since noon");
    auto events = Events(model, position);
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[0].second, Json({{"Site", "s"}, {"State", "lost"}, {"Text", "since noon"}}));
    EXPECT_EQ(events[1].second["State"], "unknown");
    EXPECT_EQ(Document(model, 1)["Devices"][0]["State"], "unknown");
    EXPECT_NE(model.MetricsText().find("discovery_devices{state=\"unknown\"} 2\n"), std::string::npos);
    model.SetSite("s", "ready", "");
    EXPECT_EQ(Events(model, position)[1].second["State"], "flapping");
    model.RemoveSite("s");
    events = Events(model, position);
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[1].first, "removed-site");
    EXPECT_EQ(Document(model, 1000)["Devices"].size(), 1);
}

TEST(PageModelTest, TheDocumentInPiecesAndTheEventsAfterItAreTheWhole)
{
    PageModel model("a");
    for (int i = 0; i < 50; ++i)
    {
        model.SetSite("s" + std::to_string(i), "ready", "");
        model.SetDevice("s" + std::to_string(i), Device, Record("{}"));
    }
    PageModel::Snapshot snapshot;
    const std::string first = model.NextPiece(snapshot, 4000, WallTime());
    model.RemoveSite("s0"); // that was in the first piece
    model.SetDevice("s49", Other, Record("{}"));
    std::string text = first;
    for (std::string piece; !(piece = model.NextPiece(snapshot, 4000, WallTime())).empty();)
    {
        text += piece;
    }
    const Json document = Json::parse(text);
    EXPECT_EQ(document["Sites"].size(), 50);
    PageModel::Position position = model.Find(document["Event"].get<std::string>()).value();
    EXPECT_EQ(Events(model, position).size(), 3); // the site and its device go, and a device has come
    EXPECT_EQ(Document(model, 1)["Devices"], Document(model, 1000000)["Devices"]);
}

TEST(PageModelTest, ChangesAndConflictsStandBesideTheRecordUntilTheConflictIsOver)
{
    PageModel model("a");
    model.SetSite("s", "ready", "");
    model.SetDevice("s", Device, Record(R"({"IPAddress":"10.0.0.5"})"));
    model.SetDevice("s", Other, Record(R"({"IPAddress":"10.0.0.5"})"));
    model.Take({"s", "1", "changed", Device, WallTime(), R"({"Host":{"a":1},"Changes":[{"Property":"MTU"}]})"});
    model.Take({"s", "2", "conflict", "", WallTime(),
                R"({"Conflict":"ip:10.0.0.5","Count":2,"Devices":[")" + Device + R"(",")" + Other + R"(",7]})"});
    model.Take({"s", "3", "changed", "no-such", WallTime(), "{}"});
    model.Take({"s", "4", "conflict", "", WallTime(), "[[["});
    model.Take({"s", "5", "conflict", "", WallTime(), std::string(4096, ' ') + R"({"Devices":[")" + Device + R"("]})"});
    Json devices = Document(model, 1)["Devices"];
    EXPECT_EQ(devices[0]["Changed"]["Details"], Json::parse(R"({"Changes":[{"Property":"MTU"}]})"));
    EXPECT_EQ(devices[0]["Conflict"]["Details"]["Count"], 2);
    EXPECT_TRUE(devices[1].contains("Conflict"));

    model.SetDevice("s", Device, Record(R"({"IPAddress":"10.0.0.5","Name":"new"})"));
    EXPECT_TRUE(Document(model, 1)["Devices"][0].contains("Conflict"));
    model.SetDevice("s", Device, Record(R"({"IPAddress":"10.0.0.50","DefaultGateway":"10.0.0.5"})"));
    devices = Document(model, 1)["Devices"];
    EXPECT_FALSE(devices[0].contains("Conflict"));
    EXPECT_FALSE(devices[1].contains("Conflict")); // it is the only one now
    EXPECT_NE(model.MetricsText().find("discovery_events_total{kind=\"conflict\"} 3\n"), std::string::npos);
}

TEST(PageModelTest, HealthIsLostWhenNobodyReportsIt)
{
    PageModel model("a");
    const PageModel::Time start{};
    EXPECT_NE(model.Problem(start), "");
    model.SetHealth("", start);
    EXPECT_EQ(model.Problem(start + PageModel::HealthLasts), "");
    EXPECT_NE(model.Problem(start + PageModel::HealthLasts + 1ms), "");
    model.SetMetrics({{"x_total", "Of a \"b\\.", Metric::MetricKind::Counter, 3e15, Metric::Label("l", "a\"\\\n")}});
    EXPECT_NE(model.MetricsText().find("x_total{l=\"a\\\"\\\\\\n\"} 3e+15\n"), std::string::npos);
}
} // namespace
