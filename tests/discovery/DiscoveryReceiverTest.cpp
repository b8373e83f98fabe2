#include "Discovery/DiscoveryReceiver.h"

#include "support/FakeDiscoverySocket.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"
#include "system/Net/Sockets/SocketError.h"

#include <gtest/gtest.h>

#include <mutex>

namespace
{
using namespace Zent::Discovery;
using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using namespace Nfx::System::Net::Sockets;
using Tests::FakeDiscoverySocket;
using Tests::LogCapture;
using Tests::WaitUntil;

class CollectingParser final : public DiscoveryMessageParser
{
public:
    CollectingParser()
        : DiscoveryMessageParser("Collector")
    {
    }

    std::vector<std::string> Texts()
    {
        const std::lock_guard lock(mutex);
        return texts;
    }

protected:
    void ProcessDatagram(const SmartPointer<Datagram>& datagram) override
    {
        const std::lock_guard lock(mutex);
        EXPECT_EQ("192.0.2.1", datagram->RemoteEndPoint->Address().ToString());
        texts.emplace_back(datagram->Message->View());
    }

private:
    std::mutex mutex;
    std::vector<std::string> texts; // guarded by mutex
};

class DiscoveryReceiverTest : public testing::Test
{
protected:
    void SetUp() override
    {
        receiver->SocketClosed().Add(MakeDelegate(*this, &DiscoveryReceiverTest::OnSocketClosed));
        parser->Start();
        receiver->Start();
    }

    void TearDown() override
    {
        receiver->Stop();
        parser->Stop();
    }

    void OnSocketClosed(Object*, const EventArgs&) { ++losses; }

    bool WaitForTexts(std::size_t count)
    {
        return WaitUntil([&] { return parser->Texts().size() == count; });
    }

    LogCapture log{LogStreamLevel::Debug};
    std::atomic<int> losses{0};
    SmartPointer<FakeDiscoverySocket> socket{new FakeDiscoverySocket()};
    SmartPointer<CollectingParser> parser{new CollectingParser()};
    SmartPointer<DiscoveryReceiver> receiver{new DiscoveryReceiver(socket, parser)};
};

TEST_F(DiscoveryReceiverTest, HandsEveryDatagramOverEmptyOnesToo)
{
    socket->Deliver("one");
    socket->Deliver("");
    socket->Deliver(std::string("t\0o", 3));
    ASSERT_TRUE(WaitForTexts(3));
    EXPECT_EQ((std::vector<std::string>{"one", "", std::string("t\0o", 3)}), parser->Texts());
    EXPECT_EQ(3, log.Count("Message received"));
}

TEST_F(DiscoveryReceiverTest, AnOversizeDatagramIsLostAndTheNextOneFits)
{
    constexpr std::int32_t Largest = 65536;
    for (std::int32_t size = DiscoveryReceiver::MessageSize(); size < Largest; size *= 2)
    {
        socket->Deliver(std::string(static_cast<std::size_t>(size) + 1, 'x'));
        EXPECT_TRUE(log.WaitFor("MessageSize is too low : " + std::to_string(size) + "! Doubling it..."));
    }
    socket->Deliver(std::string(Largest + 1, 'x'));
    socket->Deliver(std::string(Largest, 'x'));
    ASSERT_TRUE(WaitForTexts(1));
    EXPECT_EQ(Largest, DiscoveryReceiver::MessageSize()); // no datagram is larger
}

TEST_F(DiscoveryReceiverTest, AnUnreachablePeerDoesNotEndIt)
{
    socket->FailReceive(SocketError::ConnectionReset);
    socket->Deliver("after");
    ASSERT_TRUE(WaitForTexts(1));
    EXPECT_TRUE(log.Has("Socket error : remote peer returned a \"Port Unreachable\" ICMP packet."));
    EXPECT_EQ(0, losses);
}

TEST_F(DiscoveryReceiverTest, AStopEndsItWithoutALoss)
{
    ASSERT_TRUE(log.WaitFor("---Listening..."));
    receiver->Stop();
    EXPECT_TRUE(
        log.HasInOrder({"---Listening...", "Stopping receiver", "Stopping worker",
                        "The socket has been shut down : ending worker.", "Worker stopped", "---Receiver stopped---"}))
        << log.Text();
    EXPECT_EQ(0, losses);
    EXPECT_FALSE(log.Has("|E|"));
}

class DiscoveryReceiverLossTest : public DiscoveryReceiverTest,
                                  public testing::WithParamInterface<std::pair<std::int32_t, const char*>>
{
};

TEST_P(DiscoveryReceiverLossTest, EndsTheLoopAndIsReportedOnce)
{
    const auto [error, line] = GetParam();
    if (error == 0)
    {
        socket->CloseUnderReceiver();
    }
    else
    {
        socket->FailReceive(error);
    }
    ASSERT_TRUE(WaitUntil([&] { return losses == 1; }));
    EXPECT_EQ(1, log.Count(line)) << log.Text();
    socket->Deliver("nobody takes this");
    receiver->Stop();
    EXPECT_EQ(1, losses);
    EXPECT_TRUE(parser->Texts().empty());
}

INSTANTIATE_TEST_SUITE_P(Errors,
                         DiscoveryReceiverLossTest,
                         testing::Values(std::pair(0, "The socket has been closed : ending worker."),
                                         std::pair(10004, "The socket has been closed : ending worker."),
                                         std::pair(10058, "The socket has been shut down : ending worker."),
                                         std::pair(10038, "Socket error : Operation attempted on a non-socket object."),
                                         std::pair(10052, "Unexpected socket error  : NetworkReset !"),
                                         std::pair(10050, "Unexpected socket error  : NetworkDown !"),
                                         std::pair(19999, "Unexpected socket error  : 19999 !")));
} // namespace
