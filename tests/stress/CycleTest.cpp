#include "ProcessState.h"
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
#include <iostream>
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

std::atomic<int> signatures{0};

void DISCOVERY_EXTC_CALL OnSignature(const char*)
{
    ++signatures;
    if (Tests::Gate* const closed = gate)
    {
        closed->Pass();
    }
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
        signatures = 0;
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
        ASSERT_EQ(0, Server().SetClientSignatureReceivedEventCallBack(&OnSignature));
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
                !Tests::WaitUntil([&] { return listener.HasHeard(macAddress); }, seconds(1)))
            {
                return false;
            }
        }
        return true;
    }

    static std::string Signature(const std::string& members)
    {
        return R"({"DiscoveryMessageType":"SignatureBroadcast","DiscoveryVersion":"1.0.18","Host":{"HostName":"large",)"
               R"("DeviceType":"",)" +
               members + "}}";
    }

    bool IsReported(const std::string& signature)
    {
        return Tests::WaitUntil([&] {
            device.Send(signature);
            return Tests::WaitUntil([] { return signatures > 0; }, milliseconds(20));
        });
    }

    /// Sends the same until a task is refused.
    void FillQueueWith(const std::string& signature)
    {
        const int before = folder.Count("Ignoring this task");
        ASSERT_TRUE(Tests::WaitUntil([&] {
            for (int count = 0; count < 50; ++count)
            {
                device.Send(signature);
                std::this_thread::sleep_for(milliseconds(1)); // the socket's own buffer holds one
            }
            return folder.Count("Ignoring this task") > before;
        }));
    }

    /// Lets signatures wait behind a callback and be worked off. Returns the resident KiB when the queue was full.
    std::int64_t RushWith(const std::string& signature)
    {
        Tests::Gate closed;
        gate = &closed;
        FillQueueWith(signature);
        const std::int64_t full = Tests::ResidentKiB();
        const int atOpening = signatures;
        gate = nullptr;
        closed.Open();
        EXPECT_TRUE(Tests::WaitUntil([&] { return signatures >= atOpening + TaskLimit; }));
        EXPECT_TRUE(IsServedWithin(seconds(10)));
        EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::ResidentKiB() < full / 2; })) << "nothing is given back";
        return full;
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
        ASSERT_EQ(0, Server().StopServer());
        if (round == Warm)
        {
            descriptors = Tests::OpenDescriptors();
            threads = Tests::RunningThreads();
            memory = Tests::ResidentKiB();
        }
    }
    EXPECT_EQ(Rounds, folder.Count("restart triggered"));
    EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }));
    EXPECT_EQ(descriptors, Tests::OpenDescriptors());
    EXPECT_LE(Tests::ResidentKiB(), memory + 512);
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
            memory = Tests::ResidentKiB();
        }
    }
    EXPECT_TRUE(IsServedWithin(seconds(10)));         // the last request is through
    EXPECT_GE(descriptors, Tests::OpenDescriptors()); // then there was also the socket of a send, or none
    EXPECT_LE(Tests::ResidentKiB(), memory + 512);
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
    EXPECT_TRUE(IsServedWithin(seconds(1)));
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
    EXPECT_TRUE(IsServedWithin(seconds(1)));
    EXPECT_EQ(0, Server().Discover());
}

TEST_F(CycleTest, LongAFloodEndsWhenItEnds)
{
    delay = 1; // a full queue takes half a second
    Flood(seconds(3));
    EXPECT_TRUE(IsServedWithin(seconds(1)));
    EXPECT_TRUE(RequestArrivesWithin(seconds(1)));
    EXPECT_TRUE(SingleRequestsArrive());
}

TEST_F(CycleTest, LongAFloodOnASlowHostCostsWhatWaitsAndASecond)
{
    delay = 5;
    Flood(seconds(10));
    const int atEnd = hellos;
    EXPECT_TRUE(RequestArrivesWithin(seconds(30)));
    EXPECT_LE(hellos - atEnd, TaskLimit + 20); // those that waited, and what runs while the request is on its way
    EXPECT_TRUE(IsServedWithin(seconds(1)));
    EXPECT_TRUE(SingleRequestsArrive());
    EXPECT_LT(0, folder.Count("Semaphore is full (512) !!! Ignoring this task..."));
    EXPECT_EQ(0, folder.Count("restart"));
}

TEST_F(CycleTest, WhatWaitsTakesLittleMoreThanItsDatagrams)
{
    const auto list = [](const std::string& name, const std::string& element, int count) {
        std::string text = "\"" + name + "\":[" + element;
        for (int number = 1; number < count; ++number)
        {
            text += "," + element;
        }
        return text + "]";
    };
    std::string settings = "\"FileTransferInfos\":{\"0\":\"\"";
    for (int number = 1; number < 6000; ++number)
    {
        settings += ",\"" + std::to_string(number) + "\":\"\"";
    }
    const std::string interface = R"({"FriendlyName":"","MACAddress":"0:0:0:0:0:0","IPAddress":"0.0.0.0",)"
                                  R"("SubNetMask":"0.0.0.0","DefaultGateway":""})";
    const std::string product = R"({"ProductType":"","ProductSerialNumber":"","ProductVersion":"","ProductName":""})";
    const std::string datagrams[] = {
        Signature("\"NICs\":[],\"Products\":[]," + settings + "}"),
        Signature("\"Products\":[]," + list("NICs", interface, 570)),
        Signature("\"NICs\":[]," + list("Products", product, 780)),
    };
    ASSERT_TRUE(IsReported(datagrams[0])); // the library's buffer has grown
    RushWith(datagrams[0]);
    RushWith(datagrams[2]);
    for (const std::string& datagram : datagrams)
    {
        SCOPED_TRACE(datagram.substr(0, 160));
        const std::int64_t before = Tests::ResidentKiB();
        const std::int64_t full = RushWith(datagram);
        const auto size = static_cast<std::int64_t>(datagram.size());
        EXPECT_LT(full, 400 * 1024);
        EXPECT_LT((full - before) * 1024, 10 * TaskLimit * size);
        EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::ResidentKiB() <= before + before / 10; }));
        std::cout << size << " bytes, " << (full - before) * 1024 / TaskLimit << " while waiting; " << before
                  << " KiB before, " << full << " full, " << Tests::ResidentKiB() << " afterwards\n";
    }
}

} // namespace
