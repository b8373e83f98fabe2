#include "Inventory/SiteFile.h"
#include "Inventory/SitePlan.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Zent::Discovery::Inventory;

namespace
{
const std::string MAC = "02:00:00:00:00:0";

/// Devices that are called and addressed as a test wants them, by the last digits of their MAC addresses.
class Devices final
{
public:
    Devices& Add(const std::string& digit, const std::string& name, const std::string& ip, bool isReadOnly = false)
    {
        const std::string nic =
            R"({"MACAddress":")" + MAC + digit + R"(","IPAddress":")" + ip +
            R"(","SubNetMask":"255.255.255.0","DefaultGateway":"10.0.0.254","FriendlyName":"eth0","MTU":"1400"})";
        devices.emplace_back(DeviceMessage{DeviceMessage::MessageKind::Signature,
                                           R"({"SourceNIC":)" + nic + R"(,"Host":{"HostName":")" + name +
                                               R"(","IsHostNameReadOnly":)" + (isReadOnly ? "true" : "false") +
                                               R"(,"NICs":[)" + nic + "]}}"});
        return *this;
    }

    std::vector<const Device*> All() const
    {
        std::vector<const Device*> all;
        for (const Device& device : devices)
        {
            all.push_back(&device);
        }
        return all;
    }

private:
    std::vector<Device> devices;
};

std::string Entry(const std::string& digit, const std::string& name, const std::string& ip)
{
    return R"({"MACAddress":")" + MAC + digit + R"(","HostName":")" + name + R"(","IPAddress":")" + ip + R"("},)" +
           "\n";
}

SiteFile SiteOf(std::string entries)
{
    entries.resize(entries.rfind(','));
    return SiteFile::Parse("[" + entries + "]", "site.json");
}

/// A line for each step and each obstacle, with what distinguishes them.
std::string TextOf(const SitePlan& plan)
{
    std::string text;
    for (const SitePlan::Step& step : plan.Steps)
    {
        text += step.Request.Interface.MACAddress.back();
        text += (step.IsTemporary ? "~" : "=") + step.Request.HostName + step.Request.Interface.IPAddress;
        text += (step.Exchange == 0 ? "" : "+") + std::string(" ");
    }
    for (const SitePlan::Obstacle& obstacle : plan.Obstacles)
    {
        text += std::string("!") + obstacle.Request.Interface.MACAddress.back() + obstacle.Refusal.CodeName() + " ";
    }
    return text;
}

TEST(SiteFileTest, ReadsWhatItWrites)
{
    Devices devices;
    devices.Add("2", "press-10", "10.0.0.2").Add("1", "press-9", "10.0.0.1").Add("3", R"(\"\\u001b\u00FC)", "0.0.0.0");
    const SiteFile written = SiteFile::Of(devices.All());
    const SiteFile read = SiteFile::Parse(written.ToJson(), "site.json");
    EXPECT_TRUE(read.Compare(devices.All()).empty()) << written.ToJson();
    ASSERT_EQ(read.Entries().size(), 3u);
    EXPECT_EQ(read.Entries()[1].HostName, "press-9"); // behind the one of signs, before press-10
    EXPECT_EQ(read.Entries()[1].Place, "site.json: line 3, column 3");
}

TEST(SiteFileTest, TakesAddressesHoweverTheyAreWritten)
{
    const SiteFile site = SiteFile::Parse(
        R"([{"macaddress":"02-0a-00-00-00-01","IPAddress":"010.0.0.007","DefaultGateway":"0.0.0.0"},{"MACAddress":"2:0:0:0:0:2"}])",
        "site.json");
    EXPECT_EQ(site.Entries()[0].MACAddress, "02:0A:00:00:00:01");
    EXPECT_EQ(site.Entries()[0].IPAddress, "10.0.0.7");
    EXPECT_EQ(site.Entries()[0].DefaultGateway, "");
    EXPECT_EQ(site.Entries()[1].MACAddress, "02:00:00:00:00:02");
    EXPECT_EQ(site.Entries()[1].HostName, std::nullopt);
}

TEST(SiteFileTest, NamesThePlaceOfWhatIsWrong)
{
    const std::string mac = R"("MACAddress":"02:00:00:00:00:01")";
    for (const auto& [text, cause] : std::map<std::string, std::string>{
             {" \n", " is empty, which is no site file"},
             {"{}", ": line 1, column 1: a site file is an array of objects"},
             {"[\n 1]", ": line 2, column 2: 1 is no text"},
             {"[\"a\"]", ": line 1, column 2: a text has no place here"},
             {"[[]]", ": line 1, column 2: an array has no place here"},
             {"[{}]", ": line 1, column 2: the entry has no \"MACAddress\""},
             {"[{" + mac + ",\n \"HostName\":{}}]", ": line 2, column 13: an object has no place here"},
             {"[{" + mac + ",\"HostNme\":\"\\\"\"}]", ": line 1, column 36: \"HostNme\" is none of MACAddress, "},
             {"[{" + mac + ",\"HostName\":\"\\\"a\",\"hostname\":\"b\"}]",
              ": line 1, column 53: \"HostName\" is there twice"},
             {"[{" + mac + ",\"HostName\": -4e3}]", ": line 1, column 48: -4e3 is no text"},
             {"[{\"MACAddress\" : \"02:00\"}]", ": line 1, column 18: \"02:00\" is no MAC address"},
             {"[{" + mac + ",\n\"IPAddress\":\"10.0.0.300\"}]",
              ": line 2, column 13: \"10.0.0.300\" is no IPv4 address"},
             {"[{" + mac + "},\n{" + mac + "}]",
              ": line 2, column 15: 02:00:00:00:00:01 is there twice; first at site.json: line 1"},
             {"[{" + mac + "}", ": line 1, column 36: syntax error"},
             {"[{" + mac + "},]", ": line 1, column 37: syntax error"}})
    {
        SCOPED_TRACE(text);
        try
        {
            SiteFile::Parse(text, "site.json");
            FAIL();
        }
        catch (const std::invalid_argument& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with("site.json" + cause)) << error.what();
        }
    }
}

TEST(SiteFileTest, TellsWhatIsMissingForeignAndDeviating)
{
    const SiteFile site =
        SiteOf(Entry("1", "a", "10.0.0.1") + Entry("2", "b", "10.0.0.2") + Entry("3", "c", "10.0.0.3"));
    Devices devices;
    devices.Add("1", "a", "10.0.0.1").Add("2", "x", "10.0.0.9").Add("4", "d", "10.0.0.4");
    std::string found;
    const std::vector<const Device*> all = devices.All();
    for (const SiteDeviation& each : site.Compare(all))
    {
        found += each.ToJson() + "\n";
    }
    EXPECT_EQ(found, R"({"Deviation":"missing","HostName":"c","MACAddress":"02:00:00:00:00:03","IPAddress":"10.0.0.3"}
{"Deviation":"deviating","HostName":"x","MACAddress":"02:00:00:00:00:02","IPAddress":"10.0.0.9","Differences":[{"Property":"HostName","Before":"x","After":"b"},{"Property":"IPAddress","Before":"10.0.0.9","After":"10.0.0.2"}]}
{"Deviation":"foreign","HostName":"d","MACAddress":"02:00:00:00:00:04","IPAddress":"10.0.0.4"}
)");
}

TEST(SitePlanTest, NobodyTakesWhatAnotherOneStillHas)
{
    Devices devices;
    devices.Add("1", "a", "10.0.0.1").Add("2", "b", "10.0.0.2").Add("3", "c", "10.0.0.3").Add("4", "d", "10.0.0.4");
    for (const auto& [entries, plan] : std::map<std::string, std::string>{
             {Entry("1", "b", "10.0.0.1") + Entry("2", "C", "10.0.0.2") + Entry("3", "e", "10.0.0.3"), "3=e 2=C 1=b "},
             // Exchanged: one steps aside.
             {Entry("1", "b", "10.0.0.1") + Entry("2", "A", "10.0.0.2"), "1~swap-000001+ 2=A+ 1=b+ "},
             {Entry("1", "a", "10.0.0.2") + Entry("2", "b", "10.0.0.3") + Entry("3", "c", "10.0.0.1"),
              "1~10.0.0.253+ 3=10.0.0.1+ 2=10.0.0.3+ 1=10.0.0.2+ "},
             {Entry("1", "a", "10.0.0.253") + Entry("2", "b", "10.0.0.3") + Entry("3", "c", "10.0.0.2"),
              "1=10.0.0.253 2~10.0.0.252+ 3=10.0.0.2+ 2=10.0.0.3+ "},
             // A chain that ends in an exchange.
             {Entry("4", "a", "10.0.0.4") + Entry("1", "b", "10.0.0.1") + Entry("2", "a2", "10.0.0.2"),
              "2=a2 1=b 4=a "},
             {Entry("4", "a", "10.0.0.4") + Entry("1", "b", "10.0.0.1") + Entry("2", "e", "10.0.0.2"), "2=e 1=b 4=a "},
             // One device after the other.
             {Entry("1", "x", "10.0.0.7") + Entry("2", "y", "10.0.0.8"), "1=x 1=10.0.0.7 2=y 2=10.0.0.8 "},
             // What cannot be, and what hangs on it.
             {Entry("1", "b", "10.0.0.1") + Entry("3", "a", "10.0.0.3"), "!1name-taken !3name-taken "},
             {Entry("1", "x", "10.0.0.4"), "1=x !1address-taken "},
             {Entry("1", "x", "10.0.0.1") + Entry("2", "X", "10.0.0.2"), "1=x !2name-taken "},
             {Entry("1", "", "10.0.0.0"), "!1bad-name !1bad-address "},
             {Entry("5", "x", "10.0.0.1"), ""}})
    {
        EXPECT_EQ(TextOf(SitePlan::For(SiteOf(entries), devices.All(), {})), plan) << entries;
    }
}

TEST(SitePlanTest, KeepsToWhatItMayUse)
{
    Devices devices;
    devices.Add("1", "a", "10.0.0.1", true).Add("2", "b", "10.0.0.2");
    const SiteFile site = SiteOf(Entry("1", "a", "10.0.0.2") + Entry("2", "b", "10.0.0.1"));
    EXPECT_EQ(TextOf(SitePlan::For(site, devices.All(), {.Reserved = {"10.0.0.253"}})),
              "1~10.0.0.252+ 2=10.0.0.1+ 1=10.0.0.2+ ");
    EXPECT_EQ(TextOf(SitePlan::For(site, devices.All(), {.SpareAddress = "10.0.0.9"})),
              "1~10.0.0.9+ 2=10.0.0.1+ 1=10.0.0.2+ ");
    EXPECT_EQ(TextOf(SitePlan::For(site, devices.All(), {.SpareAddress = "10.0.0.2"})),
              "!2address-taken !1address-taken ");
    EXPECT_EQ(TextOf(SitePlan::For(site, devices.All(), {.What = SitePlan::Scope::Names})), "");
    EXPECT_EQ(TextOf(SitePlan::For(SiteOf(Entry("1", "c", "10.0.0.1")), devices.All(), {})), "!1name-read-only ");
    const SitePlan plan = SitePlan::For(SiteOf(Entry("1", "a", "10.0.0.7")), devices.All(), {});
    EXPECT_EQ(plan.Steps.at(0).Request.Settings(),
              R"({"FriendlyName":"eth0","IPAddress":"10.0.0.7","SubNetMask":"255.255.255.0","DefaultGateway":)"
              R"("10.0.0.254","MTU":"1400"})");
}
} // namespace
