#include "support/DeviceDatagram.h"
#include "support/Gate.h"
#include "support/HostileDatagrams.h"
#include "support/LoadedExtC.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"
#include "system/Exception.h"
#include "system/Net/Sockets/Socket.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketType;
using std::chrono::milliseconds;
using Tests::Server;

constexpr std::string_view ProbeName = "probe-";

std::atomic<int> lastProbe{0}; // the number in the name of the probe that was heard last
std::atomic<bool> hasGrown{false};
std::atomic<bool> hasBadText{false};
std::atomic<Tests::Gate*> gate{nullptr};

void DISCOVERY_EXTC_CALL OnHello(const char* hostJson)
{
    const std::string_view document(hostJson);
    hasBadText = hasBadText || document.find("bad \xFF\xC3( text") != std::string_view::npos;
    hasGrown = hasGrown || document.find("\"large\"") != std::string_view::npos;
    const std::size_t probe = document.find(ProbeName);
    if (probe != std::string_view::npos)
    {
        lastProbe = std::atoi(hostJson + probe + ProbeName.size());
    }
    if (Tests::Gate* const closed = gate)
    {
        closed->Pass();
    }
}

/// The library between a host and whoever sends to it.
class TrafficTest : public testing::Test
{
protected:
    void TearDown() override
    {
        gate = nullptr;
        EXPECT_EQ(0, Server().Terminate());
        lastProbe = 0;
        hasGrown = false;
    }

    void Start(int logLevel)
    {
        ASSERT_EQ(0, Server().Initialize(folder.PathOf("test.log").c_str(), logLevel));
        ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
        ASSERT_EQ(0, Server().StartServer());
        ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    }

    void Send(const std::string& datagram)
    {
        try
        {
            socket.SendTo(reinterpret_cast<const std::uint8_t*>(datagram.data()),
                          static_cast<std::int32_t>(datagram.size()), IPEndPoint(IPAddress::Parse("127.0.0.1"), 12001));
        }
        catch (const Nfx::System::Exception&)
        {
            // No room on its way. The caller sends again.
        }
    }

    /// Whether a Hello that is sent now, and now and then again, is reported. What was sent before it is done then.
    bool IsServed()
    {
        const int number = ++sentProbes;
        return Tests::WaitUntil([&] {
            Send(Tests::DeviceDatagram("Hello", "1.0.18", std::string(ProbeName) + std::to_string(number)));
            return Tests::WaitUntil([&] { return lastProbe == number; }, milliseconds(20));
        });
    }

    /// All that is in the folder of the log.
    std::uintmax_t LoggedBytes() const
    {
        std::uintmax_t bytes = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        {
            bytes += entry.file_size();
        }
        return bytes;
    }

    /// Makes requests on many threads. Returns how many of them failed.
    static int Request(int threadCount, int requestsPerThread)
    {
        std::atomic<int> failures{0};
        std::vector<std::thread> threads;
        for (int number = 0; number < threadCount; ++number)
        {
            threads.emplace_back([&failures, requestsPerThread] {
                for (int request = 0; request < requestsPerThread; ++request)
                {
                    failures += Server().Discover() != 0 ? 1 : 0;
                }
            });
        }
        for (std::thread& thread : threads)
        {
            thread.join();
        }
        return failures;
    }

    const Tests::TemporaryFolder folder;

private:
    int sentProbes = 0;
    Socket socket{AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp};
};

TEST_F(TrafficTest, NoDatagramEndsHangsOrDeafensTheServer)
{
    ASSERT_NO_FATAL_FAILURE(Start(DiscoveryLogDebug));
    const std::string large = Tests::DeviceDatagram("Hello", "1.0.18", "large");
    ASSERT_TRUE(Tests::WaitUntil([&] { // until the library's buffer has grown
        Send(std::string(Tests::LargestDatagram - large.size(), ' ') + large);
        return Tests::WaitUntil([] { return hasGrown.load(); }, milliseconds(20));
    }));
    ASSERT_TRUE(IsServed());
    for (const std::string& datagram : Tests::LargestHostileDatagrams())
    {
        SCOPED_TRACE(Tests::BeginningOf(datagram));
        const std::uintmax_t before = LoggedBytes();
        Send(datagram);
        ASSERT_TRUE(IsServed());
        // At level Debug the text is written, and the host's name once more, with four characters for a control one.
        EXPECT_LT(LoggedBytes(), before + 9 * datagram.size() + 64 * 1024);
    }
    EXPECT_EQ(0, folder.Count("restart"));
}

TEST_F(TrafficTest, NoRandomDamageEndsHangsOrDeafensTheServer)
{
    ASSERT_NO_FATAL_FAILURE(Start(DiscoveryLogDebug));
    std::mt19937 random(1);
    const std::string hello = Tests::DeviceDatagram("Hello", "1.0.18", "vandal");
    for (int round = 0; round < 2000; ++round)
    {
        std::string damaged = hello;
        for (std::mt19937::result_type changes = random() % 4; changes > 0; --changes)
        {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        damaged.resize(damaged.size() - (random() % 2 == 0 ? random() % damaged.size() : 0));
        Send(damaged);
    }
    EXPECT_TRUE(IsServed());
    EXPECT_EQ(0, folder.Count("restart"));
}

TEST_F(TrafficTest, TextThatIsNoUTF8ReachesTheCallbackAsItCame)
{
    ASSERT_NO_FATAL_FAILURE(Start(DiscoveryLogDebug));
    EXPECT_TRUE(Tests::WaitUntil([&] {
        Send(Tests::DeviceDatagram("Hello", "1.0.18", "bad \xFF\xC3( text"));
        return Tests::WaitUntil([] { return hasBadText.load(); }, milliseconds(20));
    }));
}

TEST_F(TrafficTest, ManyThreadsFillTheQueueAndWhatItAcceptedIsServed)
{
    constexpr int Threads = 16;
    constexpr int Requests = 2000;
    constexpr int TaskLimit = 512;
    ASSERT_NO_FATAL_FAILURE(Start(DiscoveryLogStandard));
    Tests::Gate closed;
    gate = &closed;
    Send(Tests::DeviceDatagram("Hello", "1.0.18", "first"));
    ASSERT_TRUE(closed.WaitForArrivals(1));

    std::thread hellos([this] {
        for (int count = 0; count < 200; ++count)
        {
            Send(Tests::DeviceDatagram("Hello", "1.0.18", "device"));
            std::this_thread::sleep_for(milliseconds(1)); // for the library's parser to run among the others
        }
    });
    EXPECT_EQ(0, Request(Threads, Requests));
    hellos.join();
    EXPECT_TRUE(Tests::WaitUntil([&] { // what came before is parsed
        Send(Tests::DeviceDatagram("Bye", "1.0.18", "device"));
        return folder.Count("|Message type : Bye") > 0;
    }));
    const auto served = [this] { return folder.Count("|Message sent") + folder.Count("|Notifying receipt of "); };
    EXPECT_EQ(1, served());
    gate = nullptr;
    closed.Open();
    EXPECT_TRUE(Tests::WaitUntil([&] { return served() == 1 + TaskLimit; })) << served();
    const auto refused = [this] { return folder.Count("Semaphore is full (512) !!! Ignoring this task..."); };
    const auto reported = [this] { return folder.Count("|Message type : "); };
    EXPECT_EQ(Threads * Requests + reported(), 1 + TaskLimit + refused());

    EXPECT_EQ(0, Request(Threads, Requests / 2)); // now for each place that becomes free
    EXPECT_TRUE(Tests::WaitUntil([&] { return Threads * Requests * 3 / 2 + reported() == served() + refused(); },
                                 std::chrono::seconds(20)))
        << served() << " served, " << refused() << " refused, " << reported() << " reported";
    EXPECT_TRUE(IsServed());
    EXPECT_EQ(0, folder.Count("|E|"));
}
} // namespace
