#include "SiteInventory.h"

#include "Log.h"
#include "NullPublisher.h"
#include "support/DeviceDocuments.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

using namespace Zent::Discovery;
using namespace Zent::Discovery::Agent;
using namespace std::chrono_literals;
using DeviceDocuments::Nic;
using Inventory::DeviceMessage;

namespace
{
/// Keeps which records there are.
class KeptPublisher final : public NullPublisher
{
public:
    void PublishRecord(const std::string& id, const Fleet::DeviceRecord& /*record*/) override { Ids.insert(id); }

    void RemoveRecord(const std::string& id) override { Ids.erase(id); }

    std::set<std::string> Ids;
};

class SiteInventoryTest : public testing::Test
{
protected:
    /// A message of the device with that serial number, from the first of its interfaces.
    void Feed(const std::string& serial, const std::vector<std::string>& ends)
    {
        std::string nics;
        for (const std::string& end : ends)
        {
            nics += (nics.empty() ? "" : ",") + Nic(end.empty() ? "" : "02:00:00:00:00:" + end, "10.0.0.1");
        }
        session.Feed({DeviceMessage::MessageKind::Signature,
                      R"({"Host":{"HostName":"a","SerialNumber":")" + serial + R"(","NICs":[)" + nics + "]}}"},
                     now += 1s);
        while (const std::optional<Inventory::Event> event = session.NextEvent())
        {
            inventory.Take(*event, {});
        }
    }

    /// The ends of the ids.
    std::string Published() const
    {
        std::string ends;
        for (const std::string& id : publisher.Ids)
        {
            ends += id.substr(15) + " ";
        }
        return ends;
    }

    std::ostringstream lines;
    Log log{lines, Log::LogLevel::Info, false};
    KeptPublisher publisher;
    Inventory::Session session{{.MaximumDevices = 3}};
    Inventory::Time now{0};
    SiteInventory inventory{"site", "agent", session, publisher, log};
};

TEST_F(SiteInventoryTest, EachRowOfTheTableIsARecord)
{
    Feed("1", {"", "0B", "0A"}); // the first interface has no address
    EXPECT_EQ(Published(), "0a ");
    Feed("2", {"0C"});
    Feed("2", {"0D"});
    EXPECT_EQ(Published(), "0a 0c 0d "); // nothing tells yet that the two are one
    Feed("2", {"0C", "0D"});
    EXPECT_EQ(Published(), "0a 0c ");
    Feed("2", {"0C", "0D", "0A"}); // an adapter that both have
    EXPECT_EQ(Published(), "0a 0c ");
    Feed("1", {"0B"});
    Feed("2", {"0C", "0A"}); // or that has moved
    EXPECT_EQ(Published(), "0a 0b ");
    Feed("3", {"0E"});
    Feed("4", {"0F"});
    EXPECT_EQ(Published(), "0a 0e 0f "); // a full table has forgotten the first
    EXPECT_EQ(session.Devices().Size(), 3u);
    EXPECT_EQ(inventory.Count().Devices, 3u);
}
} // namespace
