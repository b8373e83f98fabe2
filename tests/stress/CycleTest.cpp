#include "ProcessState.h"
#include "StopTime.h"
#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/Server.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>

namespace
{
using std::chrono::milliseconds;
using std::chrono::seconds;
using Tests::ProcessState;
using Tests::Server;

constexpr int TaskLimit = 512;
constexpr milliseconds ServiceLimit{TIME_SCALE * 1000}; // what service may take after a flood, as StopLimit

std::atomic<int> hellos{0};
std::atomic<int> probes{0};
std::atomic<int> delay{0}; // milliseconds

void DISCOVERY_EXTC_CALL OnHello(const char* hostJson)
{
    ++hellos;
    probes += std::string_view(hostJson).find("\"probe\"") != std::string_view::npos ? 1 : 0;
    std::this_thread::sleep_for(milliseconds(delay));
}

class CycleTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, Server().Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
        ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
        Start();
    }

    void TearDown() override
    {
        delay = 0;
        EXPECT_EQ(0, Server().Terminate());
        EXPECT_TRUE(Tests::Device::IsServerPortFree());
    }

    static void Start()
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
                return Tests::WaitUntil([&] { return probes > before; }, milliseconds(5));
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
        return Tests::WaitUntil(
            [&] {
                return Server().ReachClient("127.0.0.1") == 0 && device.Hears("SendYourSignature", milliseconds(5));
            },
            deadline);
    }

    /// Whether requests reach the device when each waits for the one before: nothing makes up for a lost wake-up.
    bool SingleRequestsArrive()
    {
        for (int number = 10; number < 15; ++number)
        {
            const std::string macAddress = "02:00:00:00:00:" + std::to_string(number);
            if (Server().RefreshClient(macAddress.c_str()) != 0 || !device.Hears(macAddress, ServiceLimit))
            {
                return false;
            }
        }
        return true;
    }

    /// That nothing has grown since; memory says something about the library in some builds alone.
    static void ExpectNoMoreThan(const ProcessState& before)
    {
        EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::CurrentState().Threads <= before.Threads; }));
        EXPECT_TRUE(Tests::WaitUntil([&] { return Tests::CurrentState().Handles <= before.Handles; }));
        EXPECT_LE(MEASURES_MEMORY ? Tests::CurrentState().Memory : 0, before.Memory + 512);
    }

    const Tests::TemporaryFolder folder;
    Tests::Device device;
};

TEST_F(CycleTest, ThreeThousandStartsAndStopsUseNothingUp)
{
    ProcessState warm{};
    for (int round = 0; round < 3000; ++round)
    {
        SendHello("device");
        ASSERT_EQ(0, Server().Discover());
        ASSERT_NO_FATAL_FAILURE(Stop());
        if (round == 500)
        {
            warm = Tests::CurrentState();
        }
        ASSERT_NO_FATAL_FAILURE(Start());
    }
    EXPECT_TRUE(IsServedWithin(seconds(10)));
    ASSERT_EQ(0, Server().StopServer());
    ExpectNoMoreThan(warm);
}

TEST_F(CycleTest, AStopDuringAFloodWaitsForNothingThatWaits)
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

TEST_F(CycleTest, AFloodOnASlowHostCostsWhatWaitsAndASecond)
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
