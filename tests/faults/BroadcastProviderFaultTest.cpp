#include "FaultTest.h"
#include "system/Net/Sockets/SocketError.h"

namespace Tests
{
namespace ExtC = Zent::Discovery::ExtC;
using Nfx::System::Net::Sockets::SocketError;

class BroadcastProviderFaultTest : public FaultTest
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(Serve());
        ASSERT_EQ(0, ExtC::InitBroadcastProvider("[\"127.0.0.1\"]"));
        ASSERT_TRUE(HelloArrives());
    }
};

TEST_F(BroadcastProviderFaultTest, WhatComesWhileASocketIsBeingMadeIsNotLost)
{
    Gate maker;
    Faults::Hold(Call::Connect, maker);
    ASSERT_EQ(0, ExtC::Discover());
    ASSERT_TRUE(maker.WaitForArrivals(1));
    const int before = hellos;
    device.Send(DeviceDatagram("Hello", "1.0.18", "press-4"));
    device.Send(DeviceDatagram("Hello", "1.0.18", "press-5"));
    maker.Open();
    EXPECT_TRUE(WaitUntil([&] { return hellos == before + 2; })) << hellos - before;
    Faults::Clear();
}

TEST_F(BroadcastProviderFaultTest, AFailingSendCostsOneBroadcastAndLeavesNoSocket)
{
    const int open = Faults::OpenHandles();
    Faults::Fail(Call::Send, 1, 1, SocketError::AddressNotAvailable);
    EXPECT_EQ(0, ExtC::Discover());
    EXPECT_TRUE(WaitForLine("Exception caught while sending message from address 127.0.0.1 !"));
    EXPECT_TRUE(DiscoverArrives());
    EXPECT_EQ(1, Count("Exception caught while"));
    EXPECT_TRUE(WaitUntil([&] { return Faults::OpenHandles() == open; }));
    EXPECT_EQ(0, Count("Asynchronous restart triggered"));
}

TEST_F(BroadcastProviderFaultTest, ItKeepsNoSocketWhileARestartWaits)
{
    ASSERT_TRUE(DiscoverArrives());
    Faults::Fail(Call::Bind, 1, Faults::Always, SocketError::AddressAlreadyInUse);
    Faults::Fail(Call::Receive, 1, 1, SocketError::NetworkDown);
    device.Send("{}");
    EXPECT_TRUE(WaitForLine("No socket for the restart yet"));
    EXPECT_TRUE(Device::IsServerPortFree());
    Faults::Clear();
    EXPECT_TRUE(HelloArrives());
    EXPECT_TRUE(DiscoverArrives());
}
} // namespace Tests
