#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/Server.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{
using Tests::Server;

std::atomic<int> answers{0};

void DISCOVERY_EXTC_CALL OnSignature(const char*)
{
    ++answers;
}

/// The broadcast provider's sockets are the better match for what is sent to their addresses.
TEST(AnswerTest, LongNoAnswerIsLostToTheBroadcastProvider)
{
    constexpr int Rounds = 1000;
    const Tests::TemporaryFolder folder;
    ASSERT_EQ(0, Server().Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
    ASSERT_EQ(0, Server().SetClientSignatureReceivedEventCallBack(&OnSignature));
    ASSERT_EQ(0, Server().StartServer());
    ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    Tests::Device device;
    std::atomic<bool> isOver{false};
    std::thread answering(
        [&] { device.AnswerUntil(isOver, Tests::DeviceDatagram("SignatureBroadcast", "1.0.18", "at once")); });
    int lost = 0;
    for (int round = 0; round < Rounds && lost < 10; ++round)
    {
        const int expected = answers + 2;
        EXPECT_EQ(0, Server().ReachClient("127.0.0.1")); // its answer comes while the broadcast is being sent
        if (round % 2 == 0)
        {
            EXPECT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]")); // new sockets for this one
        }
        EXPECT_EQ(0, Server().Discover());
        if (!Tests::WaitUntil([&] { return answers >= expected; }, std::chrono::seconds(2)))
        {
            lost += expected - answers;
        }
    }
    isOver = true;
    answering.join();
    EXPECT_EQ(0, lost);
    EXPECT_EQ(0, Server().Terminate());
}
} // namespace
