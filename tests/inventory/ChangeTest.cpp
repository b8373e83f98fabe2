#include "Inventory/Session.h"

#include <gtest/gtest.h>

#include <map>
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
    std::string Name;
    std::string IPAddress;
    std::string Flags = R"("IsHostNameReadOnly":false)";
    bool Takes = true;        // what it is told
    Time Delay{0};            // until it does
    Time SilentFrom{600000};  // since it was told
    Time SilentUntil{600000}; // then it starts anew
    Time AnswerDelay{10};
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
        const std::int64_t id = session.StartChange(request, options, now);
        for (const Time end = now + 200s; now < end; now += 10ms)
        {
            Step();
            while (std::optional<Event> event = session.NextEvent())
            {
                if (event->Kind == Event::EventKind::ChangeEnded && event->Outcome->Id == id)
                {
                    EXPECT_EQ(session.ChangeState(id), nullptr);
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
            session.Feed(answers.begin()->second, now);
            answers.erase(answers.begin());
        }
        session.Advance(now);
        while (const std::optional<Wish> wish = session.NextWish())
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
            session.Answer(wish.Id, isLibraryWilling ? 1 : 0);
        }
        else if (wish.ExpectsAnswer())
        {
            session.Answer(wish.Id, hasRoute ? 1 : 0);
        }
    }

    void Reach(const Wish& wish, const std::string& address, FakeDevice& device)
    {
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

    Session session;
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
}
} // namespace
