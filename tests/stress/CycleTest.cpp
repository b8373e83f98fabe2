#include "ProcessState.h"
#include "StopTime.h"
#include "Traffic.h"
#include "support/DeviceDatagram.h"
#include "support/Gate.h"
#include "support/LoadedExtC.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <string>
#include <string_view>
#include <thread>

namespace
{
using std::chrono::milliseconds;
using std::chrono::seconds;
using Tests::Server;

constexpr std::uint16_t ServerPort = 12001;
constexpr int TaskLimit = 512;
constexpr milliseconds ServiceLimit{TIME_SCALE * 1000}; // what service may take after a flood, as StopLimit

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

/// KiB; always 0 in a build in which memory says nothing about the library.
std::int64_t Resident()
{
    return MEASURES_MEMORY ? Tests::ResidentKiB() : 0;
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
        Open();
    }

    void TearDown() override
    {
        gate = nullptr;
        delay = 0;
        EXPECT_EQ(0, Server().Terminate());
        EXPECT_TRUE(Tests::IsServerPortFree());
    }

    void Open()
    {
        ASSERT_EQ(0, Server().Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
        ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
        Start();
    }

    /// Takes the server's socket away, and waits until it has another one and serves.
    template <class TLoss>
    void LoseSocket(TLoss&& loss)
    {
        const std::uint64_t lost = Tests::SocketOn(ServerPort);
        ASSERT_TRUE(loss(ServerPort));
        ASSERT_TRUE(Tests::WaitUntil([&] { return IsAnotherSocketThan(lost); }));
        ASSERT_TRUE(IsServedWithin(seconds(10)));
    }

    void Start()
    {
        ASSERT_EQ(0, Server().StartServer());
        ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    }

    static void Stop()
    {
        int code = 0;
        const milliseconds time = Tests::TimeOf([&] { code = Server().StopServer(); });
        ASSERT_EQ(0, code);
        EXPECT_GT(Tests::StopLimit.count(), time.count());
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

    /// Twenty Hellos a millisecond.
    void Flood(seconds length)
    {
        constexpr int PerMillisecond = 20;
        const auto start = std::chrono::steady_clock::now();
        for (milliseconds passed{0}; passed < length; ++passed)
        {
            std::this_thread::sleep_until(start + passed);
            for (int count = 0; count < PerMillisecond; ++count)
            {
                SendHello("flood");
            }
        }
    }

    /// Whether a request reaches the device. Asks again: while the queue is full requests are dropped.
    bool RequestArrivesWithin(milliseconds deadline)
    {
        Tests::RequestListener listener;
        return Tests::WaitUntil(
            [&] { return Server().ReachClient("127.0.0.1") == 0 && listener.HasHeard("SendYourSignature"); }, deadline);
    }

    /// Whether requests reach the device when each waits for the one before: nothing makes up for a lost wake-up.
    static bool SingleRequestsArrive()
    {
        Tests::RequestListener listener;
        for (int number = 10; number < 15; ++number)
        {
            const std::string macAddress = "02:00:00:00:00:" + std::to_string(number);
            if (Server().RefreshClient(macAddress.c_str()) != 0 ||
                !Tests::WaitUntil([&] { return listener.HasHeard(macAddress); }, ServiceLimit))
            {
                return false;
            }
        }
        return true;
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
        ASSERT_NO_FATAL_FAILURE(Stop());
        if (round == 500)
        {
            descriptors = Tests::OpenDescriptors();
            threads = Tests::RunningThreads();
            memory = Resident();
        }
        ASSERT_NO_FATAL_FAILURE(Start());
    }
    EXPECT_TRUE(IsServedWithin(seconds(10)));
    ASSERT_EQ(0, Server().StopServer());
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_LE(Resident(), memory + 512);
}

TEST_F(CycleTest, LongEveryLostSocketIsReplacedOnceAndTheHostNeedNotKnow)
{
    ASSERT_TRUE(IsServedWithin(seconds(10)));
    const std::int64_t descriptors = Tests::OpenDescriptors();
    const std::int64_t threads = Tests::RunningThreads();
    constexpr int Losses = 15;
    for (int loss = 0; loss < Losses; ++loss)
    {
        ASSERT_NO_FATAL_FAILURE(LoseSocket(&Tests::ShutDownSocketOn)) << loss;
    }
    const int before = hellos;
    SendHello("single");
    ASSERT_TRUE(Tests::WaitUntil([&] { return hellos > before; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));
    EXPECT_EQ(Losses, folder.Count("restart triggered"));
}

TEST_F(CycleTest, LongAThousandRestartsUseNothingUp)
{
    constexpr int Rounds = 1000;
    constexpr int Warm = 200;
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    std::int64_t memory = 0;
    for (int round = 1; round <= Rounds; ++round)
    {
        // A server restarts once a second at most; a new one does at once.
        ASSERT_EQ(0, Server().Terminate());
        ASSERT_NO_FATAL_FAILURE(Open());
        ASSERT_EQ(0, Server().Discover());
        ASSERT_TRUE(IsServedWithin(seconds(10)));
        ASSERT_NO_FATAL_FAILURE(LoseSocket(&Tests::ShutDownSocketOn)) << round;
        ASSERT_NO_FATAL_FAILURE(Stop());
        if (round == Warm)
        {
            descriptors = Tests::OpenDescriptors();
            threads = Tests::RunningThreads();
            memory = Resident();
        }
    }
    EXPECT_EQ(Rounds, folder.Count("restart triggered"));
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_LE(Resident(), memory + 512);
}

TEST_F(CycleTest, ASocketThatSomebodyClosesIsReplaced)
{
    ASSERT_TRUE(IsServedWithin(seconds(10)));
    const std::int64_t descriptors = Tests::OpenDescriptors();
    ASSERT_NO_FATAL_FAILURE(LoseSocket(&Tests::CloseSocketOn));
    EXPECT_EQ(1, folder.Count("restart triggered"));
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::OpenDescriptors() == descriptors; }));
}

TEST_F(CycleTest, LongBroadcastsFromDeadAddressesUseNothingUp)
{
    std::string addresses = "[\"127.0.0.1\"";
    for (int number = 1; number <= 50; ++number)
    {
        addresses += ",\"192.0.2." + std::to_string(number) + "\"";
    }
    ASSERT_EQ(0, Server().InitBroadcastProvider((addresses + "]").c_str()));
    Tests::RequestListener listener;
    std::int64_t descriptors = 0;
    std::int64_t memory = 0;
    for (int request = 0; request < 1000; ++request)
    {
        ASSERT_EQ(0, Server().Discover());
        ASSERT_TRUE(Tests::WaitUntil([&] { return listener.HasHeard("AllSendYourSignature"); })) << request;
        if (request == 200)
        {
            descriptors = Tests::OpenDescriptors();
            memory = Resident();
        }
    }
    EXPECT_TRUE(IsServedWithin(seconds(10)));         // the last request is through
    EXPECT_GE(descriptors, Tests::OpenDescriptors()); // then there was also the socket of a send, or none
    EXPECT_LE(Resident(), memory + 512);
}

TEST_F(CycleTest, SignalsOfTheHostDisturbNothing)
{
    struct sigaction handled = {};
    handled.sa_handler = [](int) {}; // and without SA_RESTART: system calls that it interrupts fail
    struct sigaction before = {};
    ASSERT_EQ(0, sigaction(SIGUSR1, &handled, &before));
    ASSERT_TRUE(IsServedWithin(seconds(10)));
    const std::string log = folder.Read("log.txt");
    Tests::SignalOtherThreads(SIGUSR1, 10000);
    EXPECT_TRUE(IsServedWithin(ServiceLimit));
    EXPECT_EQ(log, folder.Read("log.txt"));
    sigaction(SIGUSR1, &before, nullptr);
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
    EXPECT_TRUE(IsServedWithin(ServiceLimit));
    EXPECT_EQ(0, Server().Discover());
}

TEST_F(CycleTest, LongAFloodEndsWhenItEnds)
{
    delay = 1; // a full queue takes half a second
    Flood(seconds(3));
    EXPECT_TRUE(IsServedWithin(ServiceLimit));
    EXPECT_TRUE(RequestArrivesWithin(ServiceLimit));
    EXPECT_TRUE(SingleRequestsArrive());
}

TEST_F(CycleTest, LongAStopDuringAFloodWaitsForNothingThatWaits)
{
    delay = 5; // a full queue takes two and a half seconds
    std::thread flood([this] { Flood(seconds(4)); });
    for (int stop = 0; stop < 3 && !HasFailure(); ++stop)
    {
        const int before = hellos;
        EXPECT_TRUE(Tests::WaitUntil([&] { return hellos >= before + 100; }));
        Stop();
        Start();
    }
    flood.join();
    EXPECT_TRUE(IsServedWithin(4 * ServiceLimit));
    EXPECT_LT(0, folder.Count("Semaphore is full (512) !!! Ignoring this task..."));
}

TEST_F(CycleTest, LongAFloodOnASlowHostCostsWhatWaitsAndASecond)
{
    delay = 5;
    Flood(seconds(10));
    const int atEnd = hellos;
    EXPECT_TRUE(RequestArrivesWithin(seconds(30)));
    EXPECT_LE(hellos - atEnd, TaskLimit + 20); // those that waited, and what runs while the request is on its way
    EXPECT_TRUE(IsServedWithin(ServiceLimit));
    EXPECT_TRUE(SingleRequestsArrive());
    EXPECT_LT(0, folder.Count("Semaphore is full (512) !!! Ignoring this task..."));
    EXPECT_EQ(0, folder.Count("restart"));
}
} // namespace
