#include "Inventory/Session.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <stdexcept>

using namespace Zent::Discovery::Inventory;
using namespace std::chrono_literals;
using Kind = DeviceMessage::MessageKind;
using WishKind = Wish::WishKind;

namespace
{
constexpr const char* MAC = "02:00:00:00:00:01";
constexpr const char* OtherMAC = "02:00:00:00:00:02";

/// A device on the cable, and what it does when it is told to change.
struct FakeDevice
{
    std::string Name = "press-1";
    std::string IPAddress = "10.0.0.1";
    std::string Flags = R"("IsHostNameReadOnly":false)";
    bool Takes = true;        // what it is told
    Time Delay{0};            // until it does
    Time SilentFrom{600000};  // since it was told
    Time SilentUntil{600000}; // then it starts anew
    Time AnswerDelay{10};
    Time DeafUntil{0}; // of the host program's time
    std::string NextName = Name;
    std::string NextIPAddress = IPAddress;

    std::string Document(const std::string& address) const
    {
        return R"({"Host":{"HostName":")" + Name + R"(",)" + Flags +
               R"(,"NICs":[{"FriendlyName":"eth0","MACAddress":")" + address + R"(","IPAddress":")" + IPAddress +
               R"(","SubNetMask":"255.255.255.0","DefaultGateway":"","MTU":"1500"}]}})";
    }
};

/// Devices around a session, and a host program whose time passes in steps of 10 ms.
class ChangeTest : public testing::Test
{
protected:
    static ChangeOptions NoLook()
    {
        ChangeOptions options;
        options.Look.reset();
        return options;
    }

    static ChangeRequest Settings(const std::string& address,
                                  const std::string& mask = "255.255.255.0",
                                  const std::string& gateway = "")
    {
        return ChangeRequest::Configure(
            {.MACAddress = MAC, .IPAddress = address, .SubNetMask = mask, .DefaultGateway = gateway});
    }

    /// Runs until the change has ended.
    ChangeReport Run(const ChangeRequest& request, const ChangeOptions& options = NoLook())
    {
        const std::int64_t id = session->StartChange(request, options, now);
        for (const Time end = now + 200s; now < end; now += 10ms)
        {
            Step();
            while (std::optional<Event> event = session->NextEvent())
            {
                if (event->Kind == Event::EventKind::ChangeEnded && event->Outcome->Id == id)
                {
                    EXPECT_EQ(session->ChangeState(id), nullptr);
                    return *event->Outcome;
                }
            }
        }
        throw std::runtime_error("the change does not end");
    }

    std::string Verdict(const ChangeRequest& request, const ChangeOptions& options = NoLook())
    {
        const ChangeReport report = Run(request, options);
        return report.Refusal ? report.Refusal->CodeName() : report.VerdictName();
    }

    void Step()
    {
        while (!answers.empty() && answers.begin()->first <= now)
        {
            session->Feed(answers.begin()->second, now);
            answers.erase(answers.begin());
        }
        session->Advance(now);
        while (const std::optional<Wish> wish = session->NextWish())
        {
            CarryOut(*wish);
        }
    }

    void CarryOut(const Wish& wish)
    {
        for (auto& [address, device] : devices)
        {
            if (wish.Kind == WishKind::AskAll || wish.Address == address || wish.Address == device.IPAddress)
            {
                Reach(wish, address, device);
            }
        }
        if (wish.IsRequestOfChange())
        {
            requests.push_back(wish);
            session->Answer(wish.Id, isLibraryWilling ? 1 : 0);
        }
        else if (wish.ExpectsAnswer())
        {
            session->Answer(wish.Id, hasRoute ? 1 : 0);
        }
    }

    void Reach(const Wish& wish, const std::string& address, FakeDevice& device)
    {
        if (now < device.DeafUntil)
        {
            return;
        }
        if (wish.IsRequestOfChange() && isLibraryWilling)
        {
            told[address] = now;
            device.NextName = wish.Kind == WishKind::Configure ? device.Name : wish.Text;
            device.NextIPAddress = wish.Kind == WishKind::Configure ? newAddress : device.IPAddress;
        }
        if (told.contains(address) && device.Takes && now >= told[address] + device.Delay)
        {
            device.Name = device.NextName;
            device.IPAddress = device.NextIPAddress;
        }
        const bool isSilent = told.contains(address) && now >= told[address] + device.SilentFrom &&
                              now < told[address] + device.SilentUntil;
        if (!isSilent && !wish.ExpectsAnswer())
        {
            answers.emplace(now + device.AnswerDelay, DeviceMessage{Kind::Signature, device.Document(address)});
        }
    }

    std::optional<Session> session{std::in_place};
    Time now{0};
    std::map<std::string, FakeDevice> devices{{MAC, {"press-1", "10.0.0.1"}}, {OtherMAC, {"press-2", "10.0.0.2"}}};
    std::map<std::string, Time> told;
    std::multimap<Time, DeviceMessage> answers; // on their way
    std::vector<Wish> requests;
    std::string newAddress = "10.0.0.7";
    bool isLibraryWilling = true;
    bool hasRoute = true;
};

TEST_F(ChangeTest, AChangeIsSentAndSeen)
{
    const ChangeReport report = Run(ChangeRequest::Rename("02-00-00-00-00-01", "press-3"));
    EXPECT_EQ(report.ToJson(), R"({"MACAddress":"02:00:00:00:00:01","Verdict":"applied","Seconds":0.0,)"
                               R"("Before":{"HostName":"press-1"},"After":{"HostName":"press-3"}})");
    EXPECT_EQ(report.ToString(), R"(02:00:00:00:00:01 has taken the name "press-3" (applied))");
    ChangeRequest settings = Settings("10.0.0.7").Normal();
    EXPECT_EQ(settings.ToString(), "the address 10.0.0.7/24 without a gateway");
    settings.Interface.MTU = "1400"; // what differs in nothing else tells what it is about
    EXPECT_EQ(settings.ToString(), "the address 10.0.0.7/24 without a gateway, MTU 1400");
}

TEST_F(ChangeTest, ADeviceInAForeignSubnetIsSeenAndGivenBackWhatItHad)
{
    devices[MAC].Name = "";
    newAddress = "192.168.7.7";
    const ChangeReport report = Run(Settings("192.168.7.7", "255.255.255.0", "192.168.7.1"));
    EXPECT_EQ(report.ToJson(),
              R"({"MACAddress":"02:00:00:00:00:01","Verdict":"refused","Seconds":3.0,)"
              R"("Before":{"FriendlyName":"eth0","IPAddress":"10.0.0.1","SubNetMask":"255.255.255.0",)"
              R"("DefaultGateway":"","MTU":"1500"},)"
              R"("After":{"FriendlyName":"eth0","IPAddress":"192.168.7.7","SubNetMask":"255.255.255.0",)"
              R"("DefaultGateway":"","MTU":"1500"}})"); // it has not taken the gateway
    EXPECT_EQ(Verdict(Settings("192.168.7.7")), "applied");
    EXPECT_EQ(requests.back().Text, R"([{"MACAddress":"02:00:00:00:00:01","FriendlyName":"eth0",)"
                                    R"("IPAddress":"192.168.7.7","SubNetMask":"255.255.255.0","DefaultGateway":"",)"
                                    R"("MTU":"Unknown"}])");

    newAddress = "10.0.0.1";
    EXPECT_EQ(Verdict(report.Undo().value()), "applied");
    const ChangeReport renamed = Run(ChangeRequest::Rename(MAC, "press-9"));
    ChangeOptions options = NoLook();
    EXPECT_EQ(Verdict(renamed.Undo().value(), options), "bad-name"); // it had none
    options.GivesBack = true;
    EXPECT_EQ(Verdict(renamed.Undo().value(), options), "applied");
}

TEST_F(ChangeTest, WhatCannotBeRightIsNotSent)
{
    const std::string controls = "press\n3";

    const struct
    {
        ChangeRequest Request;
        const char* Code;
    } cases[] = {{ChangeRequest::Rename(MAC, ""), "bad-name"},
                 {ChangeRequest::Rename(MAC, "  "), "bad-name"},
                 {ChangeRequest::Rename(MAC, controls), "bad-name"},
                 {ChangeRequest::Rename(MAC, "press\xC2\x85"), "bad-name"}, // a line end of other systems
                 {ChangeRequest::Rename(MAC, "press\xFC"), "bad-name"},     // in another encoding
                 {ChangeRequest::Rename(MAC, std::string(256, 'a')), "bad-name"},
                 {Settings("10.0.0.7", "0.255.0.0"), "bad-mask"},
                 {Settings("10.0.0.7", "0.0.0.0"), "bad-mask"},
                 {Settings("10.0.0.0"), "bad-address"},
                 {Settings("10.0.0.255"), "bad-address"},
                 {Settings("224.0.0.1"), "bad-address"},
                 {Settings("127.0.0.1"), "bad-address"},
                 {Settings("0.0.0.7"), "bad-address"},
                 {Settings("10.0.0.7", "255.255.255.0", "10.0.1.1"), "gateway-outside"},
                 {Settings("10.0.0.7", "255.255.255.0", "10.0.0.255"), "gateway-outside"}};

    ChangeOptions options; // a look costs no time here, for nothing is asked
    options.Force = true;
    for (const auto& each : cases)
    {
        EXPECT_EQ(Verdict(each.Request, options), each.Code) << each.Request.Interface.IPAddress;
    }
    EXPECT_EQ(now, 0ms);
    EXPECT_TRUE(requests.empty());

    for (const ChangeRequest& right :
         {Settings("10.0.0.7", "255.255.255.254"), Settings("10.0.0.7", "255.255.255.255"),
          Settings("10.0.0.7", "255.0.0.0", "0.0.0.0"), ChangeRequest::Rename(MAC, std::string(255, 'a'))})
    {
        EXPECT_FALSE(ChangeChecks::FindInValues(right.Normal(), {}));
    }
    EXPECT_THROW(session->StartChange(Settings("10.0.0"), {}, now), std::invalid_argument);
    EXPECT_THROW(session->StartChange(ChangeRequest::Rename("02:00:00:00:00", "a"), {}, now), std::invalid_argument);
}

TEST_F(ChangeTest, WhatAnotherDeviceHasIsTakenUnlessForced)
{
    ChangeOptions forced = NoLook();
    forced.Force = true;
    const ChangeRequest rename = ChangeRequest::Rename(MAC, "PRESS-2");
    EXPECT_EQ(Verdict(rename, {}), "name-taken"); // the look has found it
    EXPECT_EQ(Verdict(Settings("10.0.0.2")), "address-taken");
    EXPECT_EQ(Verdict(ChangeRequest::Rename("02:00:00:00:00:03", "press-3")), "unknown-device");
    devices[OtherMAC].Flags = R"("DeviceType":"Panel")";
    EXPECT_EQ(Verdict(ChangeRequest::Rename(OtherMAC, "press-3"), {}), "name-read-only");
    now += 20s;
    EXPECT_EQ(Verdict(ChangeRequest::Rename(OtherMAC, "press-3"), forced), "name-read-only");
    EXPECT_TRUE(requests.empty());
    EXPECT_EQ(Verdict(rename, forced), "applied");
    newAddress = "10.0.0.2";
    EXPECT_EQ(Verdict(Settings("10.0.0.2"), forced), "applied");
    EXPECT_EQ(Verdict(ChangeRequest::Rename("02:00:00:00:00:03", "press-3"), forced), "no-answer");
}

TEST_F(ChangeTest, OfTwoChangesAtOnceTheSecondFindsTheAddressTaken)
{
    const auto first = Settings("10.0.0.7");
    ChangeRequest second = first;
    second.Interface.MACAddress = OtherMAC;
    session->StartChange(first, NoLook(), now);
    EXPECT_EQ(Verdict(second), "address-taken");
    EXPECT_EQ(requests.size(), 1u);
}

TEST_F(ChangeTest, TheVerdictSaysWhatTheDeviceHasDone)
{
    const char* const reboots = R"("IsHostNameReadOnly":false,"RebootRequiredForHostNameChange":true)";

    const struct
    {
        const char* Verdict;
        double Seconds; // until it
        FakeDevice Device;
        std::optional<Time> RebootTimeout = {};
    } cases[] = {
        {"applied", 2.1, {.Delay = 2s, .AnswerDelay = 90ms}},
        {"applied", 2.9, {.AnswerDelay = 2900ms}}, // a late signature
        {"refused", 3, {.Takes = false}},
        {"refused", 3, {.Delay = 4s}}, // too late
        {"no-answer", 3, {.SilentFrom = 0s}},
        {"no-answer", 3, {.Takes = false, .SilentFrom = 1s}},
        {"reboot-needed", 3, {.Flags = reboots, .Takes = false}},
        {"applied", 5.1, {.Flags = reboots, .Delay = 5s}, 10s},
        {"applied", 20.1, {.Flags = reboots, .Delay = 20s, .SilentFrom = 1s, .SilentUntil = 20s}},
        {"reboot-needed", 60, {.Flags = reboots, .Takes = false, .SilentFrom = 1s}},
        {"reboot-needed", 3, {.Flags = reboots, .SilentFrom = 0s}, 0s},
    };

    for (const auto& each : cases)
    {
        SCOPED_TRACE(std::string(each.Verdict) + " after " + std::to_string(each.Seconds));
        session.emplace();
        told.clear();
        answers.clear();
        devices = {{MAC, each.Device}};
        ChangeOptions options = NoLook();
        options.RebootTimeout = each.RebootTimeout;
        const ChangeReport report = Run(ChangeRequest::Rename(MAC, "press-3"), options);
        EXPECT_STREQ(report.VerdictName(), each.Verdict);
        EXPECT_NEAR(static_cast<double>(report.Elapsed.count()) / 1000, each.Seconds, 1.0);
    }
}

TEST_F(ChangeTest, WhatADeviceMissesWhileItStartsAnewIsGivenBackOnceMore)
{
    devices[MAC].Flags = R"("IsHostNameReadOnly":false,"RebootRequiredForHostNameChange":true)";
    const ChangeRequest undo = Run(ChangeRequest::Rename(MAC, "press-3")).Undo().value();
    ChangeOptions options = NoLook();
    options.GivesBack = true;
    devices[MAC].DeafUntil = now + 2s;
    EXPECT_EQ(Verdict(undo, options), "applied");
    EXPECT_EQ(requests.size(), 3u);
    devices[MAC].DeafUntil = now + 100s;
    EXPECT_EQ(Verdict(undo, options), "no-answer"); // nobody knows whether it has heard of it
}

TEST_F(ChangeTest, ADeviceElsewhereIsRenamedWhereThereIsARoute)
{
    const ChangeRequest request = ChangeRequest::RenameAt("10.0.000.1", "press-3");
    const ChangeReport report = Run(request);
    EXPECT_STREQ(report.VerdictName(), "applied");
    EXPECT_EQ(requests.back().Kind, WishKind::RenameAt);
    EXPECT_TRUE(report.ToJson().starts_with(R"({"MACAddress":"02:00:00:00:00:01",)"));
    hasRoute = false;
    EXPECT_EQ(Verdict(request), "no-route");
    EXPECT_EQ(requests.size(), 1u);
}

TEST_F(ChangeTest, ALibraryThatRestartsItselfIsGivenTheRequestAgain)
{
    isLibraryWilling = false;
    EXPECT_EQ(Verdict(ChangeRequest::Rename(MAC, "press-3")), "send-failed");
    const std::size_t attempts = requests.size();
    EXPECT_GE(attempts, 5u);
    session->StartChange(ChangeRequest::Rename(MAC, "press-4"), NoLook(), now);
    Step();
    isLibraryWilling = true;
    EXPECT_EQ(Verdict(ChangeRequest::Rename(OtherMAC, "press-5")), "applied");
    now += 1s;
    Step();
    EXPECT_EQ(devices[MAC].NextName, "press-4");
    EXPECT_EQ(requests.size(), attempts + 3);
}

TEST_F(ChangeTest, AChangeWaitsForASearchThatRunsAndNoLongerThanItsLook)
{
    SearchOptions options;
    options.Once = true; // does not end before its time
    session->StartSearch(options, now);
    EXPECT_EQ(Verdict(ChangeRequest::Rename(MAC, "press-3")), "applied"); // it does not look
    EXPECT_LT(now, 1s);
    EXPECT_EQ(Verdict(ChangeRequest::Rename(MAC, "press-4"), {}), "applied");
    EXPECT_GE(now, 3s);
    EXPECT_LT(now, 4s);
    EXPECT_FALSE(session->SearchState()->IsOver);
}
} // namespace
