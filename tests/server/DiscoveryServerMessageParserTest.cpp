#include "Server/DiscoveryServerMessageParser.h"

#include "Server/MinimumCompatibleVersion.h"
#include "support/DeviceDatagram.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

namespace
{
using namespace Zent::Discovery;
using namespace Zent::Discovery::Server;
using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using namespace Nfx::System::Net;
using Tests::DeviceDatagram;
using Tests::LogCapture;
using Tests::WaitUntil;

class DiscoveryServerMessageParserTest : public testing::Test
{
protected:
    void SetUp() override
    {
        parser.ActionReady().Add(MakeDelegate(*this, &DiscoveryServerMessageParserTest::OnAction));
        parser.Start();
    }

    void TearDown() override
    {
        parser.Stop();
        MinimumCompatibleVersion::Set(Version());
    }

    void OnAction(Object*, const ServerActionArgs& args)
    {
        const std::lock_guard lock(mutex);
        actions.push_back(args.Action()->Type());
    }

    /// Gives the datagrams and a Hello behind them, and returns the types of all actions but that of the Hello.
    std::vector<std::int32_t> Process(std::initializer_list<std::string> datagrams)
    {
        for (const std::string& datagram : datagrams)
        {
            Give(datagram);
        }
        Give(DeviceDatagram("Hello", "1.0.18", "last"));
        const auto handled = [this] {
            const std::lock_guard lock(mutex);
            return !actions.empty() && actions.back() == ServerActionType::NotifyHelloMessageReceived;
        };
        EXPECT_TRUE(WaitUntil(handled));
        const std::lock_guard lock(mutex);
        std::vector<std::int32_t> types(actions.begin(), actions.end());
        types.pop_back();
        actions.clear();
        return types;
    }

    void Give(const std::string& text)
    {
        const SmartPointer<String> message(new String(text.data(), text.size()));
        parser.Enqueue(SmartPointer<Datagram>(new Datagram(message, IPEndPoint(IPAddress::Parse("10.1.2.3"), 0))));
    }

    LogCapture log{LogStreamLevel::Debug};
    DiscoveryServerMessageParser parser;
    std::mutex mutex;
    std::vector<ServerActionType> actions; // guarded by mutex
};

TEST_F(DiscoveryServerMessageParserTest, TurnsTheThreeKindsIntoActionsAndIgnoresRequests)
{
    const std::string request =
        R"({"DiscoveryMessageType":"ChangeYourHostName","DiscoveryVersion":"1.0.18","NewHostName":"x",)"
        R"("TargetedMACAddress":"00:00:00:00:00:00"})";
    const std::vector<std::int32_t> types = Process(
        {DeviceDatagram("SignatureBroadcast", "01.00.18", "one"), DeviceDatagram("Bye", "1.0.18", "two"), request});
    EXPECT_EQ((std::vector<std::int32_t>{ServerActionType::NotifyClientSignatureReceived,
                                         ServerActionType::NotifyByeMessageReceived}),
              types);
    EXPECT_TRUE(log.HasInOrder({"|S|           |Message type : SignatureBroadcast",
                                "|D|           |Message : {\"DiscoveryMessageType\":\"SignatureBroadcast\"",
                                "|S|           |Message type : Bye", "|D|           |Message type : ChangeYourHostName",
                                "|S|           |Message ignored", "|S|           |Message type : Hello"}))
        << log.Text();
    EXPECT_FALSE(log.Has("Version mismatch"));
}

TEST_F(DiscoveryServerMessageParserTest, DropsVersionsBelowTheMinimumAlone)
{
    EXPECT_EQ(1u, Process({DeviceDatagram("Bye", "0.0", "old")}).size());
    MinimumCompatibleVersion::Set(Version(1, 0, 10));
    EXPECT_EQ(2u, Process({DeviceDatagram("Bye", "1.0.9.5", "lower"), DeviceDatagram("Bye", "1.0", "lower"),
                           DeviceDatagram("Bye", "1.0.10", "the minimum"), DeviceDatagram("Bye", "2.0", "higher")})
                      .size());
    EXPECT_EQ(1, log.Count("|S|           |Version mismatch with received message ! [1.0.18] <> [1.0.9.5]."));
    EXPECT_EQ(1, log.Count("Version mismatch with received message ! [1.0.18] <> [2.0]."));
    EXPECT_EQ(2, log.Count("|C|           |The protocol version of the message is not supported ! Message dropped."));
    EXPECT_EQ(2, log.Count("|D|           |Sender of the dropped message : 10.1.2.3"));
}

TEST_F(DiscoveryServerMessageParserTest, WhatIsNoMessageIsDroppedWithItsLines)
{
    const std::string noHost = R"({"DiscoveryMessageType":"Hello","DiscoveryVersion":"1.0.18"})";
    const std::string unknownType = R"({"DiscoveryMessageType":"Good morning","DiscoveryVersion":"1.0.18"})";
    EXPECT_TRUE(Process({"", "no JSON", "[1,2]", noHost, unknownType}).empty());
    EXPECT_EQ(5, log.Count("Message dropped : bad format !"));
    EXPECT_EQ(5, log.Count("Invalid format : message dropped"));
    EXPECT_EQ(5, log.Count("|D|           |Sender of the dropped message : 10.1.2.3"));
    EXPECT_EQ(1, log.Count("No Host key !!! => BAD MESSAGE FORMAT !"));
}
} // namespace
