#include "Server/DiscoveryServerTaskProcessor.h"

#include "support/FakeDiscoverySocket.h"
#include "support/Gate.h"
#include "support/LogCapture.h"
#include "support/RunOnThreads.h"
#include "support/WaitUntil.h"
#include "system/Net/Sockets/SocketException.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{
using namespace Zent::Discovery;
using namespace Zent::Discovery::Server;
using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using namespace Nfx::System::Net;
using namespace Nfx::System::Net::Sockets;
using Tests::FakeDiscoverySocket;
using Tests::Gate;
using Tests::LogCapture;
using Tests::WaitUntil;

const std::string Everybody = "255.255.255.255";

class UnknownAction final : public ServerAction
{
public:
    UnknownAction()
        : ServerAction(7)
    {
    }

    void HandleBy(IServerActionHandler& handler) const override { handler.HandleOther(*this); }
};

/// Counts the broadcasts and may hold them up.
class FakeProvider final : public IBroadcastProvider
{
public:
    void Send(const std::uint8_t*, Int32) override
    {
        ++Sent;
        if (Hold != nullptr)
        {
            EXPECT_TRUE(Hold->Pass());
        }
    }

    std::atomic<int> Sent{0};
    Gate* Hold = nullptr;
};

class DiscoveryServerTaskProcessorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        processor.SocketClosed().Add(MakeDelegate(*this, &DiscoveryServerTaskProcessorTest::OnSocketClosed));
        processor.Start();
    }

    void TearDown() override { processor.Stop(); }

    void OnSocketClosed(Object*, const EventArgs&) { ++losses; }

    void Enqueue(ServerAction* action)
    {
        processor.Enqueue(nullptr, ServerActionArgs(SmartPointer<ServerAction>(action)));
    }

    void Discover() { Enqueue(new SendAllSendYourSignatureAction()); }

    /// A provider that stands at the gate with the first broadcast.
    SmartPointer<FakeProvider> HoldUpAt(Gate& gate)
    {
        SmartPointer<FakeProvider> provider(new FakeProvider());
        provider->Hold = &gate;
        processor.SetBroadcastProvider(provider);
        Discover();
        EXPECT_TRUE(gate.WaitForArrivals(1));
        return provider;
    }

    FakeDiscoverySocket::Sent SentBy(ServerAction* action)
    {
        Enqueue(action);
        EXPECT_TRUE(socket->WaitForSent(1));
        return socket->TakeSent().at(0);
    }

    LogCapture log{LogStreamLevel::Debug};
    std::atomic<int> losses{0};
    SmartPointer<FakeDiscoverySocket> socket{new FakeDiscoverySocket()};
    DiscoveryServerTaskProcessor processor{socket};
};

TEST_F(DiscoveryServerTaskProcessorTest, EachRequestBecomesItsDatagramAndItsLine)
{
    using NICConfigList = SendChangeYourIPConfigAction::NICConfigList;
    const MACAddress mac = MACAddress::Parse("00:1a:2b:3c:4d:5e");
    const IPAddress ip = IPAddress::Parse("192.0.2.7");
    const std::string toMac = R"(,"TargetedMACAddress":"00:1A:2B:3C:4D:5E")";
    const std::string toNobody = R"(,"TargetedMACAddress":"00:00:00:00:00:00")";
    const std::string name = R"(,"NewHostName":"press-4")";

    const struct
    {
        ServerAction* Action;
        std::string Type;
        std::string Broadcast;
        std::string Members;
        std::string Target;
        std::string LineEnd;
    } cases[] = {
        {new SendAllSendYourSignatureAction(), "AllSendYourSignature", "True", "", Everybody, ""},
        {new SendSendYourSignatureAction(mac), "SendYourSignature", "False", toMac, Everybody, " to 00:1A:2B:3C:4D:5E"},
        {new SendSendYourSignatureAction(ip), "SendYourSignature", "True", toNobody, "192.0.2.7", " to 192.0.2.7"},
        {new SendChangeYourHostNameAction("press-4", mac), "ChangeYourHostName", "False", name + toMac, Everybody,
         " to 00:1A:2B:3C:4D:5E."},
        {new SendChangeYourHostNameAction("press-4", ip), "ChangeYourHostName", "True", name + toNobody, "192.0.2.7",
         " to 192.0.2.7."},
        // The broadcast address is no device's: nobody may take these for himself.
        {new SendSendYourSignatureAction(IPAddress::Broadcast()), "SendYourSignature", "False", toNobody, Everybody,
         " to 00:00:00:00:00:00"},
        {new SendChangeYourHostNameAction("press-4", IPAddress::Broadcast()), "ChangeYourHostName", "False",
         name + toNobody, Everybody, " to 00:00:00:00:00:00."},
        {new SendChangeYourIPConfigAction(SmartPointer<NICConfigList>(new NICConfigList())), "ChangeYourIPConfig",
         "True", R"(,"NewNICConfigs":[])", Everybody, "."}};

    for (int number = 1; const auto& one : cases)
    {
        const FakeDiscoverySocket::Sent sent = SentBy(one.Action);
        EXPECT_EQ(R"({"DiscoveryMessageType":")" + one.Type + R"(","DiscoveryVersion":"1.0.18","Broadcast":")" +
                      one.Broadcast + "\"" + one.Members + "}",
                  sent.Text);
        EXPECT_EQ(one.Target, sent.Target);
        ASSERT_TRUE(log.WaitFor("|S|           |Message sent", number));
        EXPECT_EQ(number++, log.Count("|D|           |Message (JSON) : {"));
        const std::string line = "|S|           |Sending message of type " + one.Type + one.LineEnd;
        EXPECT_EQ(1, log.Count(line + "\r") + log.Count(line + "\n")) << line << "\n" << log.Text();
    }
}

TEST_F(DiscoveryServerTaskProcessorTest, TheProviderTakesBroadcastsAndNothingElse)
{
    const SmartPointer<FakeProvider> provider(new FakeProvider());
    processor.SetBroadcastProvider(provider);
    Discover();
    ASSERT_TRUE(WaitUntil([&] { return provider->Sent == 1; }));
    EXPECT_EQ("192.0.2.7", SentBy(new SendSendYourSignatureAction(IPAddress::Parse("192.0.2.7"))).Target);
    EXPECT_EQ(1, provider->Sent);
    EXPECT_EQ(1, log.Count("Sending message using broadcast provider..."));
}

TEST_F(DiscoveryServerTaskProcessorTest, RefusesWhatDoesNotFitAndAcceptsAgainAsSoonAsOneIsTaken)
{
    Gate gate;
    const SmartPointer<FakeProvider> provider = HoldUpAt(gate);
    Tests::RunOnThreads(8, [this](int) {
        for (int count = 0; count < DiscoveryTaskProcessor::MaximumPending / 8; ++count)
        {
            Discover();
        }
    });
    EXPECT_FALSE(log.Has("Semaphore is full"));
    Discover();
    EXPECT_EQ(1, log.Count("|C|           |Semaphore is full (512) !!! Ignoring this task..."));
    gate.Open();
    ASSERT_TRUE(WaitUntil([&] { return provider->Sent == DiscoveryTaskProcessor::MaximumPending + 1; }));
    Discover();
    ASSERT_TRUE(WaitUntil([&] { return provider->Sent == DiscoveryTaskProcessor::MaximumPending + 2; }));
    EXPECT_EQ(1, log.Count("Semaphore is full"));
}

TEST_F(DiscoveryServerTaskProcessorTest, StopsWithAFullQueueAfterTheTaskInHand)
{
    Gate gate;
    const SmartPointer<FakeProvider> provider = HoldUpAt(gate);
    for (int count = 0; count < DiscoveryTaskProcessor::MaximumPending; ++count)
    {
        Discover();
    }
    std::thread stopper([this] { processor.Stop(); });
    EXPECT_TRUE(log.WaitFor("Stopping worker"));
    gate.Open();
    stopper.join();
    EXPECT_EQ(1, provider->Sent);
    EXPECT_EQ(DiscoveryTaskProcessor::MaximumPending, processor.PendingCount());
    EXPECT_TRUE(log.HasInOrder(
        {"Stopping Task Processor", "Stopping worker", "Worker stopped", "---Task Processor stopped---"}));
    EXPECT_EQ(0, losses);
}

TEST_F(DiscoveryServerTaskProcessorTest, AnUnknownActionIsNamedAndCostsNothingElse)
{
    Enqueue(new UnknownAction());
    SentBy(new SendAllSendYourSignatureAction());
    EXPECT_EQ(1, log.Count("|C|           |Action type not supported ! Ignoring..."));
}

struct SendFailure
{
    std::int32_t Error; // 0 stands for a closed socket
    const char* Line;
    bool IsLoss;
};

class DiscoveryServerTaskProcessorSendTest : public DiscoveryServerTaskProcessorTest,
                                             public testing::WithParamInterface<SendFailure>
{
};

TEST_P(DiscoveryServerTaskProcessorSendTest, AFailedSendCostsItsTaskAndTellsOfALoss)
{
    const SendFailure& failure = GetParam();
    socket->FailSends([&failure] {
        if (failure.Error == 0)
        {
            throw ObjectClosedException("tests/server", 1);
        }
        throw SocketException(failure.Error, "tests/server", 2);
    });
    Discover();
    ASSERT_TRUE(log.WaitFor(failure.Line)) << log.Text();
    socket->FailSends({});
    SentBy(new SendAllSendYourSignatureAction());
    EXPECT_EQ(failure.IsLoss ? 1 : 0, losses);
}

INSTANTIATE_TEST_SUITE_P(
    Errors,
    DiscoveryServerTaskProcessorSendTest,
    testing::Values(SendFailure{10004, "Message not sent : socket interrupted", true},
                    SendFailure{10038, "Socket error : Operation attempted on a non-socket object.", true},
                    SendFailure{10049, "Message not sent : address not available.", false},
                    SendFailure{10054, "Socket error : remote peer returned a \"Port Unreachable\" ICMP packet.",
                                false},
                    SendFailure{10058, "Message not sent : socket shut down", true},
                    SendFailure{10051, "Unexpected socket error  : NetworkUnreachable !", true},
                    SendFailure{0, "Message not sent : socket closed", true}));

TEST_F(DiscoveryServerTaskProcessorTest, NothingIsLostThatTheServerItselfHasClosed)
{
    socket->Shutdown();
    socket->Close();
    socket->FailSends([] { throw ObjectClosedException("tests/server", 1); });
    Discover();
    ASSERT_TRUE(log.WaitFor("Message not sent : socket closed"));
    processor.Stop();
    EXPECT_EQ(0, losses);
}
} // namespace
