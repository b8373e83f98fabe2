#include "ProcessState.h"
#include "Traffic.h"
#include "support/DeviceDatagram.h"
#include "support/ExtCLoader.h"
#include "support/Gate.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace
{
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint16_t ServerPort = 12001;
constexpr int TaskLimit = 512;

const ExtCFunctions& Server()
{
    static const ExtCFunctions functions = [] {
        ExtCFunctions loaded{};
        if (LoadExtC(EXTC_LIBRARY, &loaded) == 0)
        {
            std::exit(2);
        }
        return loaded;
    }();
    return functions;
}

std::atomic<int> hellos{0};
std::atomic<int> probes{0};
std::atomic<Tests::Gate*> gate{nullptr};
std::atomic<int> delay{0}; // milliseconds

void DISCOVERY_EXTC_CALL OnHello(const char* hostJson)
{
    ++hellos;
    probes += std::string_view(hostJson).find("\"probe\"") != std::string_view::npos ? 1 : 0;
    if (Tests::Gate* const closed = gate)
    {
        closed->Pass();
    }
    std::this_thread::sleep_for(milliseconds(delay));
}

bool IsAnotherSocketThan(std::uint64_t lost)
{
    const std::uint64_t now = Tests::SocketOn(ServerPort);
    return now != 0 && now != lost;
}

class CycleTest : public testing::Test
{
protected:
    void SetUp() override
    {
        hellos = 0;
        probes = 0;
        ASSERT_EQ(0, Server().Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
        ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
        Start();
    }

    void TearDown() override
    {
        gate = nullptr;
        delay = 0;
        EXPECT_EQ(0, Server().Terminate());
        EXPECT_TRUE(Tests::IsServerPortFree());
    }

    void Start()
    {
        ASSERT_EQ(0, Server().StartServer());
        ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    }

    void SendHello(const std::string& name) { device.Send(Tests::DeviceDatagram("Hello", "1.0.18", name)); }

    bool IsServedWithin(milliseconds deadline)
    {
        const int before = probes;
        return Tests::WaitUntil(
            [&] {
                SendHello("probe");
                std::this_thread::sleep_for(milliseconds(5));
                return probes > before;
            },
            deadline);
    }

    const Tests::TemporaryFolder folder;
    Tests::Traffic device;
};

TEST_F(CycleTest, LongThreeThousandStartsAndStopsUseNothingUp)
{
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    std::int64_t memory = 0;
    for (int round = 0; round < 3000; ++round)
    {
        SendHello("device");
        ASSERT_EQ(0, Server().Discover());
        ASSERT_EQ(0, Server().StopServer());
        if (round == 500)
        {
            descriptors = Tests::OpenDescriptors();
            threads = Tests::RunningThreads();
            memory = Tests::ResidentKiB();
        }
        ASSERT_NO_FATAL_FAILURE(Start());
    }
    EXPECT_TRUE(IsServedWithin(seconds(10)));
    ASSERT_EQ(0, Server().StopServer());
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_LE(Tests::ResidentKiB(), memory + 512);
}

TEST_F(CycleTest, LongEveryLostSocketIsReplacedOnceAndTheHostNeedNotKnow)
{
    ASSERT_TRUE(IsServedWithin(seconds(10)));
    const std::int64_t descriptors = Tests::OpenDescriptors();
    const std::int64_t threads = Tests::RunningThreads();
    constexpr int Losses = 15;
    for (int loss = 0; loss < Losses; ++loss)
    {
        const std::uint64_t lost = Tests::SocketOn(ServerPort);
        ASSERT_TRUE(Tests::ShutDownSocketOn(ServerPort));
        ASSERT_TRUE(Tests::WaitUntil([&] { return IsAnotherSocketThan(lost); })) << loss;
        ASSERT_TRUE(IsServedWithin(seconds(10))) << loss;
    }
    const int before = hellos;
    SendHello("single");
    ASSERT_TRUE(Tests::WaitUntil([&] { return hellos > before; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));

    int restarts = 0;
    const std::string log = folder.Read("log.txt");
    for (std::size_t at = log.find("restart triggered"); at != std::string::npos;
         at = log.find("restart triggered", at + 1))
    {
        ++restarts;
    }
    EXPECT_EQ(Losses, restarts);
}

TEST_F(CycleTest, AQueueThatOverflowedBehindASlowCallbackAcceptsAgain)
{
    Tests::Gate closed;
    gate = &closed;
    SendHello("first");
    ASSERT_TRUE(closed.WaitForArrivals(1));
    for (int count = 0; count < TaskLimit + 100; ++count)
    {
        SendHello("device");
        std::this_thread::sleep_for(std::chrono::microseconds(200)); // the socket's own buffer is small
    }
    gate = nullptr;
    closed.Open();
    EXPECT_TRUE(Tests::WaitUntil([] { return hellos >= TaskLimit; })) << hellos;
    EXPECT_TRUE(IsServedWithin(seconds(1)));
    EXPECT_EQ(0, Server().Discover());
}

TEST_F(CycleTest, LongAFloodEndsWhenItEnds)
{
    delay = 1; // a full queue takes half a second
    const auto start = std::chrono::steady_clock::now();
    for (int count = 0; count < 60000; ++count)
    {
        if (count % 20 == 0)
        {
            std::this_thread::sleep_until(start + milliseconds(count / 20));
        }
        SendHello("flood");
    }
    EXPECT_TRUE(IsServedWithin(seconds(1)));
}
} // namespace
