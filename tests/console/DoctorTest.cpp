#include "Doctor/Diagnosis.h"
#include "Doctor/NftRules.h"
#include "Doctor/WindowsRules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
namespace
{
using Verdicts = FirewallState::Verdicts;

Observations Healthy()
{
    Observations observations;
    observations.SubNets = {Inventory::Network::Parse("10.0.0.1/24")};
    observations.Search.emplace();
    observations.Search->Seconds = 2;
    observations.Search->Devices = {{"press-1", "0001", "02:00:00:00:00:01", "10.0.0.11"},
                                    {"press-2", "0002", "02:00:00:00:00:02", "10.0.0.12"}};
    return observations;
}

/// What is not well, by code, with its text.
std::map<std::string, std::string> Faults(const Observations& observations, std::vector<std::string> codes = {})
{
    std::map<std::string, std::string> faults;
    for (const Finding& finding : Diagnosis::Of(observations, codes))
    {
        if (finding.HowBad != Severity::Ok)
        {
            faults.emplace(finding.Of->Code, finding.Text);
        }
    }
    return faults;
}

TEST(DiagnosisTest, EachCheckDependsOnEarlierOnesAndFindsNothingOnAHealthyMachine)
{
    std::set<std::string_view> earlier;
    for (const Check& check : Check::All())
    {
        EXPECT_TRUE(std::ranges::all_of(check.DependsOn, [&](std::string_view code) { return earlier.contains(code); }))
            << check.Code;
        EXPECT_TRUE(earlier.insert(check.Code).second);
    }
    EXPECT_EQ(Diagnosis::Of(Healthy()).size(), Check::All().size());
    EXPECT_EQ(Diagnosis::WorstOf(Diagnosis::Of(Healthy())), Severity::Ok);
}

TEST(DiagnosisTest, EachFaultIsFoundAndNamesWhatIsWrong)
{
    const struct
    {
        const char* Code;
        void (*Spoil)(Observations& observations);
        const char* Text;
    } cases[] = {
        {"no-interface",
         [](Observations& all) {
             all.HasInterface = false;
             all.LeftOut = "lo (loopback)";
             all.Search.reset();
         },
         "No network interface can take part in a search; left out: lo (loopback)."},
        {"no-route", [](Observations& all) { all.HasBroadcastRoute = false; },
         "No default route leads a broadcast anywhere."},
        {"port-taken",
         [](Observations& all) {
             all.IsPortTaken = true;
             all.PortHolders = {{.Process = 17, .Program = "nc", .User = 0, .Drops = {}}};
             all.Search.reset();
         },
         "UDP port 12001 is taken by nc (process 17), which does not share it."},
        {"port-shared",
         [](Observations& all) { all.PortHolders = {{.Process = {}, .Program = "", .User = 1000, .Drops = {}}}; },
         "UDP port 12001 is shared with a program of the user with the id 1000."},
        {"firewall",
         [](Observations& all) {
             all.Firewall = {Verdicts::Dropped, "by the rules of ufw", {"sudo ufw allow 12001/udp"}};
         },
         "What comes to UDP port 12001 is dropped by the rules of ufw."},
        {"version-dropped",
         [](Observations& all) {
             all.Search->Log.VersionDropped = 2;
             all.Search->Log.Versions = {"1.0.16", "1.0.17"};
         },
         "2 messages were dropped: version 1.0.16, 1.0.17, older than the minimum version allows."},
        {"format-dropped",
         [](Observations& all) {
             all.Search->Log.FormatDropped = 1;
             all.Search->Log.FormatSenders = {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4", "10.0.0.5"};
             all.Search->Log.Defect = "No Host key";
         },
         "1 datagram was dropped from 10.0.0.1, 10.0.0.2, 10.0.0.3, 10.0.0.4, 1 other, the first one for \"No Host "
         "key\"."},
        {"answers-lost",
         [](Observations& all) {
             all.Search->BufferDrops = 944;
             all.Search->Log.Oversize = 1;
         },
         "Answers were lost on this machine: 944 datagrams found the receive buffer full, 1 datagram was too large "
         "for the first try."},
        {"queue-full", [](Observations& all) { all.Search->Log.QueueFull = 3; },
         "The library could not keep up: 3 entries were refused by its queues."},
        {"foreign-subnet",
         [](Observations& all) {
             all.Search->Devices.insert({"oven-3", "0003", "02:00:00:00:00:03", "10.0.1.13"});
         },
         "The address of oven-3 (10.0.1.13) lies in none of this machine's subnets."},
        {"conflict",
         [](Observations& all) {
             all.Search->Devices.insert({"press-3", "0003", "02:00:00:00:00:01", "10.0.0.12"});
         },
         "Devices contradict each other: the MAC address 02:00:00:00:00:01 belongs to 2 serial numbers, the IP "
         "address 10.0.0.12 belongs to 2 devices."},
        {"no-realtime", [](Observations& all) { all.Search->Log.IsRealTimeRefused = true; },
         "The system refuses the receiver the real-time priority."},
        {"nobody-answers", [](Observations& all) { all.Search->Devices.clear(); },
         "No device has answered within 2 s."},
    };

    EXPECT_EQ(std::size(cases), Check::All().size());
    for (const auto& each : cases)
    {
        SCOPED_TRACE(each.Code);
        Observations observations = Healthy();
        each.Spoil(observations);
        const std::map<std::string, std::string> expected = {{each.Code, each.Text}};
        EXPECT_EQ(Faults(observations), expected);
    }
}

TEST(DiagnosisTest, ACauseStandsInThePlaceOfWhatItHides)
{
    Observations observations = Healthy();
    observations.Search->Devices.clear();
    EXPECT_TRUE(Faults(observations).contains("nobody-answers"));
    observations.Firewall = {Verdicts::Unclear, "by something", {}};
    EXPECT_TRUE(Faults(observations).contains("nobody-answers")) << "a note hides nothing";
    observations.Firewall.Verdict = Verdicts::Dropped;
    EXPECT_FALSE(Faults(observations).contains("nobody-answers"));
    EXPECT_TRUE(Faults(observations, {"nobody-answers"}).contains("firewall"));
    EXPECT_EQ(Faults(observations, {"conflict"}).size(), 0u);
}

TEST(NftRulesTest, FollowsADatagramThroughTheRules)
{
    const auto judge = [](const std::string& policy, const std::string& rules) {
        return NftRules::Judge("table ip6 other {\n\tchain input {\n\t\ttype filter hook input priority 0; policy "
                               "drop;\n\t}\n}\ntable inet filter {\n\tset ports {\n\t\ttype inet_service\n\t\telements "
                               "= { 1,\n\t\t\t     2 }\n\t}\n\tchain input {\n\t\ttype filter hook input priority "
                               "filter; policy " +
                                   policy + ";\n" + rules +
                                   "\n\t}\n\tchain deeper {\n\t\tudp dport 1 accept\n\t\tudp dport 12000-12005 "
                                   "return\n\t\tdrop\n\t}\n}\n",
                               12001)
            .Verdict;
    };
    for (const auto& [policy, rules, verdict] : std::vector<std::tuple<const char*, const char*, Verdicts>>{
             {"accept", "", Verdicts::LetIn},
             {"drop", "", Verdicts::Dropped},
             {"drop", "iif \"lo\" accept\nct state established,related accept\ntcp dport 22 accept", Verdicts::Dropped},
             {"drop", "udp dport 12001 counter packets 0 bytes 0 accept comment \"drop\"", Verdicts::LetIn},
             {"drop", "udp dport { 53,\n 12001 } accept", Verdicts::LetIn},
             {"drop", "meta l4proto udp ct state new,untracked accept", Verdicts::LetIn},
             {"drop", "udp dport != 12001 accept", Verdicts::Dropped},
             {"drop", "ip saddr 10.0.0.0/8 udp dport 12001 accept", Verdicts::Unclear},
             {"drop", "udp dport @ports accept", Verdicts::Unclear},
             {"drop", "iifname != \"lo\" jump deeper\naccept", Verdicts::LetIn},
             {"accept", "jump deeper", Verdicts::LetIn},
             {"accept", "jump nowhere", Verdicts::Unclear},
             {"accept", "iifname \"eth0\" goto deeper", Verdicts::LetIn},
             {"accept", "log prefix \"in \" level info\nreject with icmp type port-unreachable", Verdicts::Dropped},
         })
    {
        EXPECT_EQ(judge(policy, rules), verdict) << policy << ": " << rules;
    }
}

TEST(WindowsRulesTest, NeedsARuleThatAllowsAndNoneThatBlocks)
{
    const std::string allow = "v2.10|Action=Allow|Active=TRUE|Dir=In|Protocol=17|LPort=12001|Name=Devices|";
    const std::string foreign = "v2.10|Action=Allow|Active=TRUE|Dir=In|App=C:\\other.exe|Name=Other|";
    const std::string own = "v2.10|Action=Allow|Active=TRUE|Dir=In|App=C:\\Host.exe|Name=Host|";
    const std::string block = "v2.10|Action=Block|Active=TRUE|Dir=In|App=c:\\host.exe|Name=Host|";
    const std::string inactive = "v2.10|Action=Allow|Active=FALSE|Dir=In|Protocol=17|LPort=12001|";
    const auto judge = [](const std::vector<std::string>& rules) {
        return WindowsRules::Judge(rules, "C:\\host.exe").Verdict;
    };
    EXPECT_EQ(judge({foreign, inactive}), Verdicts::Dropped);
    EXPECT_EQ(judge({foreign, allow}), Verdicts::LetIn);
    EXPECT_EQ(judge({own}), Verdicts::LetIn);
    EXPECT_EQ(judge({allow, block}), Verdicts::Dropped);
}
} // namespace
} // namespace Zent::Discovery::Console::Doctor
