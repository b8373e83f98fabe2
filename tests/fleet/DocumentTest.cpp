#include "Fleet/DeviceRecord.h"
#include "Fleet/Manifest.h"
#include "Fleet/SiteEvent.h"
#include "Fleet/SiteState.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

using namespace Zent::Discovery::Fleet;
using namespace std::chrono_literals;
using Json = nlohmann::json;

namespace
{
const WallTime Noon = std::chrono::sys_days(std::chrono::year(2026) / 2 / 28) + 12h + 250ms;

Manifest::Revisions Devices(std::size_t count)
{
    Manifest::Revisions revisions;
    for (std::size_t i = 0; i < count; ++i)
    {
        char id[24];
        std::snprintf(id, sizeof(id), "02-00-00-00-%02zx-%02zx", i / 256, i % 256);
        revisions.emplace(id, "r" + std::to_string(i));
    }
    return revisions;
}

TEST(DocumentTest, TimesSurviveTheRoundTripAndWrongOnesAreNone)
{
    EXPECT_EQ(UtcTime::ToText(Noon), "2026-02-28T12:00:00.250Z");
    EXPECT_EQ(UtcTime::Parse("2026-02-28T12:00:00.250Z"), Noon);
    for (const char* text : {"", "2026-02-29T12:00:00.250Z", "2026-02-28T24:00:00.250Z", "2026-02-28 12:00:00.250Z",
                             "2026-02-28T12:00:00.250+", "1013-03-01T12:30:00.250Z", "9999-03-01T12:30:00.250Z",
                             "-026-02-28T12:00:00.250Z"})
    {
        EXPECT_FALSE(UtcTime::Parse(text)) << text;
    }
}

TEST(DocumentTest, ARecordChangesItsRevisionWithStateAndHostAlone)
{
    using State = DeviceRecord::DeviceState;
    const std::string host = DeviceRecord::HostOf(R"({"SourceNIC":{"MTU":"1"},"Host":{"HostName":"press)"
                                                  "\xFF"
                                                  R"(","NICs":[]}})");
    EXPECT_EQ(host, "{\"HostName\":\"press\xEF\xBF\xBD\",\"NICs\":[]}");
    const DeviceRecord record(State::Present, host, Noon);
    EXPECT_EQ(record.Revision(), DeviceRecord(State::Present, host, Noon + 1h).Revision());
    EXPECT_NE(record.Revision(), DeviceRecord(State::Gone, host, Noon).Revision());
    EXPECT_NE(record.Revision(), DeviceRecord(State::Present, "{}", Noon).Revision());

    const DeviceRecord read = DeviceRecord::Parse(record.ToJson());
    EXPECT_EQ(read.ToJson(), record.ToJson());
    EXPECT_EQ(read.Host(), host);
    EXPECT_EQ(read.Since(), Noon);

    EXPECT_FALSE(DeviceRecord(State::Present, host, Noon).IsOverdue(Noon + 24h * 90));
    EXPECT_FALSE(DeviceRecord(State::Gone, host, Noon).IsOverdue(Noon + 24h * 29));
    EXPECT_TRUE(DeviceRecord(State::Left, host, Noon).IsOverdue(Noon + 24h * 31));
}

TEST(DocumentTest, HostileBytesAreRefusedByEveryReader)
{
    const std::string deep(100000, '[');
    const std::string longHost = R"({"State":"gone","Revision":"1","Since":"2026-02-28T12:00:00.250Z","Host":{"a":")" +
                                 std::string(DeviceRecord::MaximumHostBytes, 'x') + R"("}})";
    for (const std::string& bytes :
         {std::string(), std::string("[]"), std::string("{}"), std::string("{\"State\":1}"), std::string("\xFF\x00", 2),
          R"({"Host":)" + deep, R"({"State":)" + deep, longHost, std::string(R"({"Devices":1e999})"),
          std::string(R"({"Revision":"r","Devices":-1,"Parts":[],"Records":{}})"),
          std::string(R"({"Revision":"r","Devices":1,"Parts":[],"Records":{"../state":"r"}})"),
          std::string(R"({"Revision":"r","Devices":1,"Parts":[1],"Records":{}})"),
          std::string(R"({"source":"/discovery/v1/+","type":"discovery.v1.gone","id":"1","time":"now"})")})
    {
        SCOPED_TRACE(bytes.substr(0, 80));
        EXPECT_THROW(DeviceRecord::Parse(bytes), std::invalid_argument);
        EXPECT_THROW(SiteState::Parse(bytes), std::invalid_argument);
        EXPECT_THROW(SiteEvent::Parse(bytes), std::invalid_argument);
        if (!bytes.empty())
        {
            ManifestReader reader;
            EXPECT_THROW(reader.Take(0, bytes), std::invalid_argument);
            EXPECT_FALSE(reader.HasHead());
        }
    }
    EXPECT_THROW(DeviceRecord::HostOf(longHost), std::invalid_argument);
}

TEST(DocumentTest, AManifestIsWholeOnceAllItsPartsHaveComeInTheirRevision)
{
    Manifest::Revisions revisions = Devices(2500);
    std::vector<Manifest::Document> documents = Manifest::Write(revisions);
    ASSERT_EQ(documents.size(), 4u);
    std::ranges::reverse(documents);
    ManifestReader reader;
    reader.Take(documents[0].Part, documents[0].Json);
    EXPECT_EQ(reader.Devices(), 2500u);
    EXPECT_EQ(reader.MissingParts(), (std::vector<std::size_t>{1, 2, 3}));
    reader.Take(documents[1].Part, documents[1].Json);
    reader.Take(documents[2].Part, documents[2].Json);
    EXPECT_FALSE(reader.Whole());
    reader.Take(documents[3].Part, documents[3].Json);
    EXPECT_EQ(reader.Whole(), revisions);

    revisions.begin()->second = "other";
    const std::vector<Manifest::Document> next = Manifest::Write(revisions);
    reader.Take(0, next.back().Json); // a part of the older one is none of this
    EXPECT_EQ(reader.MissingParts(), std::vector<std::size_t>{1});

    revisions = Devices(1000);
    ASSERT_EQ(Manifest::Write(revisions).size(), 1u);
    reader.Take(0, Manifest::Write(revisions).front().Json);
    EXPECT_EQ(reader.Whole(), revisions);
    reader.Take(0, "");
    EXPECT_FALSE(reader.Whole());
}

TEST(DocumentTest, TheComparisonOfManifestsTellsWhatIsMissingStaleAndExtra)
{
    const Manifest::Revisions told = {{"a", "1"}, {"b", "2"}, {"c", "3"}};
    const Manifest::Revisions held = {{"b", "2"}, {"c", "0"}, {"d", "4"}};
    const Manifest::Difference difference = Manifest::Compare(told, held);
    EXPECT_EQ(difference.Missing, std::vector<std::string>{"a"});
    EXPECT_EQ(difference.Stale, std::vector<std::string>{"c"});
    EXPECT_EQ(difference.Extra, std::vector<std::string>{"d"});
}

TEST(DocumentTest, StatesAndEventsSurviveTheRoundTripAndOneOfTwoAgentsIsFirst)
{
    const SiteState state{SiteState::StateKind::Lost, "a1", "machine", Noon};
    EXPECT_EQ(SiteState::Parse(state.ToJson()).ToJson(), state.ToJson());
    const SiteState same{SiteState::StateKind::Ready, "b1", "machine", Noon};
    EXPECT_TRUE(state.IsBefore(same));
    EXPECT_FALSE(same.IsBefore(state));

    const SiteEvent event{"plant-1", "a1-7", "changed", "02-00-00-00-00-01", Noon, R"({"Changes":[]})"};
    const Json document = Json::parse(event.ToJson());
    EXPECT_EQ(document["specversion"], "1.0");
    EXPECT_EQ(document["source"], "/discovery/v1/plant-1");
    EXPECT_EQ(SiteEvent::Parse(event.ToJson()).ToJson(), event.ToJson());
}
} // namespace
