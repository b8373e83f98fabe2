#include "Server/DiscoveryServer.h"

#include "Discovery/BroadcastProviderWin32.h"
#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/Gate.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"
#include "system/Exceptions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{
using namespace Zent::Discovery;
using namespace Zent::Discovery::Server;
using namespace Nfx::System;
using namespace Nfx::System::LogStreams;
using Tests::DeviceDatagram;
using Tests::Gate;
using Tests::LogCapture;
using Tests::WaitUntil;

class CountingProvider final : public IBroadcastProvider
{
public:
    void Send(const std::uint8_t*, Int32) override { ++Sent; }

    std::atomic<int> Sent{0};
};

class DiscoveryServerTest : public testing::Test
{
protected:
    void OnHello(Object*, const HostEventArgs&)
    {
        ++hellos;
        if (holdHello)
        {
            EXPECT_TRUE(gate.Pass());
        }
    }

    HostRegistrations Registrations()
    {
        HostRegistrations registrations;
        registrations.Handlers[HostEventKind::Hello].Add(MakeDelegate(*this, &DiscoveryServerTest::OnHello));
        return registrations;
    }

    void SendHello() { device.Send(DeviceDatagram("Hello", "1.0.18", "device")); }

    bool HearsHello()
    {
        const int before = hellos;
        SendHello();
        return WaitUntil([&] { return hellos == before + 1; });
    }

    void LoseSocket() { server.AsynchronousRestart(nullptr, EventArgs::Empty()); }

    LogCapture log{LogStreamLevel::Standard};
    std::atomic<int> hellos{0};
    std::atomic<bool> holdHello{false};
    Gate gate;
    Tests::Device device;
    DiscoveryServer server;
};

TEST_F(DiscoveryServerTest, RefusesAStopBeforeAStartAndASecondStart)
{
    server.Stop();
    EXPECT_TRUE(log.Has("Client's current state : Unstarted ! -> Stopping aborted."));
    EXPECT_THROW(server.Discover(), NullPointerException);
    server.Start(Registrations());
    server.Start();
    EXPECT_TRUE(log.Has("Server's current state : Running ! -> Starting aborted."));
    EXPECT_TRUE(HearsHello());
    server.Stop();
    EXPECT_THROW(server.Discover(), NullPointerException);
    server.Start(Registrations());
    EXPECT_TRUE(HearsHello());
    server.Stop();
}

TEST_F(DiscoveryServerTest, ARestartKeepsHandlersAndProvider)
{
    const SmartPointer<CountingProvider> provider(new CountingProvider());
    server.Start(Registrations());
    server.SetBroadcastProvider(provider);
    for (int restart = 1; restart <= 2; ++restart)
    {
        LoseSocket();
        LoseSocket();
        ASSERT_TRUE(log.WaitFor("---Listening...", restart + 1)) << log.Text();
        ASSERT_TRUE(WaitUntil([&] { return server.IsRunning(); }));
        EXPECT_EQ(restart, log.Count("Asynchronous restart triggered"));
        EXPECT_TRUE(HearsHello());
        server.Discover();
        EXPECT_TRUE(WaitUntil([&] { return provider->Sent == restart; }));
    }
    EXPECT_EQ(2, hellos);
    server.Stop();
}

TEST_F(DiscoveryServerTest, ARestartKeepsTheProviderThatComesWhileItWaitsForACallback)
{
    const SmartPointer<CountingProvider> first(new CountingProvider());
    const SmartPointer<CountingProvider> second(new CountingProvider());
    holdHello = true;
    server.Start(Registrations());
    server.SetBroadcastProvider(first);
    SendHello();
    ASSERT_TRUE(gate.WaitForArrivals(1));
    LoseSocket();
    ASSERT_TRUE(log.WaitFor("Stopping Task Processor"));
    server.SetBroadcastProvider(second);
    gate.Open();
    ASSERT_TRUE(log.WaitFor("---Listening...", 2));
    ASSERT_TRUE(WaitUntil([&] { return server.IsRunning(); }));
    server.Discover();
    EXPECT_TRUE(WaitUntil([&] { return second->Sent == 1; }));
    EXPECT_EQ(0, first->Sent);
    server.Stop();
}

TEST_F(DiscoveryServerTest, AHostsOwnStopAndStartForgetsTheProvider)
{
    const SmartPointer<CountingProvider> provider(new CountingProvider());
    server.Start(Registrations());
    server.SetBroadcastProvider(provider);
    server.Stop();
    server.SetBroadcastProvider(provider);
    EXPECT_TRUE(log.Has("Broadcast provider not installed"));
    server.Start();
    EXPECT_TRUE(server.TaskProcessor()->BroadcastProvider().IsNull());
    server.Stop();
}

TEST_F(DiscoveryServerTest, AStopWaitsForTheCallbackAndSaysWhatItDiscards)
{
    holdHello = true;
    server.Start(Registrations());
    SendHello();
    ASSERT_TRUE(gate.WaitForArrivals(1));
    server.RefreshClient(MACAddress());
    server.ReachClient(Net::IPAddress::Parse("10.0.0.7"));
    server.ChangeHostName("press-1", MACAddress());
    server.ChangeHostName("press-2", Net::IPAddress::Parse("10.0.0.7"));
    EXPECT_TRUE(log.HasInOrder({"Refresh Client owning 00:", "Reach Client 10.0.0.7",
                                "Change HostName to press-1 (00:", "Change HostName to press-2 (10.0.0.7)"}));
    std::thread stopper([this] { server.Stop(); });
    EXPECT_TRUE(log.WaitFor("Stopping Task Processor"));
    EXPECT_FALSE(log.Has("Discovery Server stopped"));
    gate.Open();
    stopper.join();
    EXPECT_TRUE(
        log.HasInOrder({"Discarded what was still queued : 4 tasks, 0 datagrams.", "Discovery Server stopped"}));
}

TEST_F(DiscoveryServerTest, AnAsynchronousStopStops)
{
    server.Start();
    server.AsynchronousStop(nullptr, EventArgs::Empty());
    ASSERT_TRUE(log.WaitFor("Discovery Server stopped"));
    EXPECT_TRUE(log.HasInOrder({"Asynchronous stop triggered", "Stopping Discovery Server service"}));
    EXPECT_TRUE(WaitUntil([&] { return !server.IsRunning(); }));
    server.Start();
    EXPECT_TRUE(server.IsRunning());
}
} // namespace
