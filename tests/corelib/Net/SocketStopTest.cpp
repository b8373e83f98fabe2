#include "corelib/Net/LoopbackSocket.h"
#include "corelib/Net/Repeater.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace Nfx::System::Net::Sockets
{
namespace
{
TEST(SocketStopTest, CloseWakesABlockedReceiver)
{
    for (int cycle = 0; cycle < 200; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        Repeater receiver([&] { ReceiveText(*socket); });
        SendText(*socket, "the next receive blocks", LoopbackEnd(*socket));
        receiver.AwaitStart();
        socket->Close();
        ASSERT_EQ(receiver.Ending(), "closed");
    }
}

TEST(SocketStopTest, ShutdownWakesABlockedReceiver)
{
    for (int cycle = 0; cycle < 200; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        Repeater receiver([&] { ReceiveText(*socket); });
        SendText(*socket, "the next receive blocks", LoopbackEnd(*socket));
        receiver.AwaitStart();
        socket->Shutdown(SocketShutdown::Both);
        ASSERT_EQ(receiver.Ending(), "Shutdown");
    }
}

TEST(SocketStopTest, StopUnderTrafficEndsEveryThreadWithOneOfTwoReasons)
{
    const SmartPointer<Socket> device = OpenLoopback();
    const IPEndPoint deviceEnd = LoopbackEnd(*device);
    for (int cycle = 0; cycle < 100; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        const IPEndPoint self = LoopbackEnd(*socket);
        Repeater receiver([&] { ReceiveText(*socket); });
        Repeater sender([&] { SendText(*socket, "to myself", self); });
        Repeater otherSender([&] { SendText(*socket, "to the device", deviceEnd); });
        receiver.AwaitStart();
        otherSender.AwaitStart();

        socket->Shutdown(SocketShutdown::Both);
        socket->Close();

        for (Repeater* const repeater : {&receiver, &sender, &otherSender})
        {
            const String ending = repeater->Ending();
            ASSERT_TRUE(ending == "closed" || ending == "Shutdown") << ending.View();
        }
    }
}

TEST(SocketStopTest, ManyThreadsMayClose)
{
    for (int cycle = 0; cycle < 50; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        Repeater receiver([&] { ReceiveText(*socket); });
        std::vector<std::thread> closers;
        for (int index = 0; index < 4; ++index)
        {
            closers.emplace_back([&] { socket->Close(); });
        }
        for (std::thread& closer : closers)
        {
            closer.join();
        }
        ASSERT_EQ(receiver.Ending(), "closed");
    }
}

/// A host program that opens and closes sockets of its own all the time, and so gets every handle that is given back.
/// Nobody else may touch one: what it sends to itself it must find, and nothing leaves but what it sent.
class BusyHost final
{
public:
    BusyHost()
        : thread([this] { Run(); })
    {
    }

    ~BusyHost()
    {
        stop = true;
        thread.join();
    }

    BusyHost(const BusyHost&) = delete;
    BusyHost& operator=(const BusyHost&) = delete;

    /// The address that all sockets of the host are bound to.
    static IPAddress Address() { return IPAddress::Parse("127.0.0.2"); }

    /// How many sockets another's use of the host's handles has disturbed.
    int Disturbed() const { return disturbed; }

private:
    void Run()
    {
        while (!stop)
        {
            disturbed += UseUndisturbed() ? 0 : 1;
        }
    }

    static bool UseUndisturbed()
    {
        constexpr int PatienceMilliseconds = 1000;
        try
        {
            const SmartPointer<Socket> socket = OpenSocket();
            socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, PatienceMilliseconds);
            BindTo(*socket, Address(), 0);
            SendText(*socket, "the host's own", IPEndPoint(Address(), socket->LocalEndPoint().Port()));
            return ReceiveText(*socket).Text == "the host's own";
        }
        catch (const Exception&)
        {
            return false;
        }
    }

    std::atomic<bool> stop{false}; // set by the owner, read by the thread
    std::atomic<int> disturbed{0}; // counted by the thread, read by the owner
    std::thread thread;
};

TEST(SocketStopTest, LongAHandleIsNotGivenBackUnderARunningOperation)
{
    const BusyHost host;
    const SmartPointer<Socket> sink = OpenLoopback();
    const IPEndPoint sinkEnd = LoopbackEnd(*sink);
    Repeater sinkReader([&] { EXPECT_FALSE(ReceiveText(*sink).Sender.Address() == BusyHost::Address()); });

    for (int cycle = 0; cycle < 500; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        const IPEndPoint self = LoopbackEnd(*socket);
        // More threads than cores, so that some are put aside on the way from the check to the call.
        Repeater receiver([&] { ReceiveText(*socket); });
        SendText(*socket, "now it blocks", self);
        Repeater sender([&] { SendText(*socket, "from the library", sinkEnd); });
        Repeater otherSender([&] { SendText(*socket, "from the library", sinkEnd); });
        receiver.AwaitStart();
        sender.AwaitStart();
        otherSender.AwaitStart();
        socket->Close();
    }

    sink->Close();
    EXPECT_EQ(host.Disturbed(), 0);
}
} // namespace
} // namespace Nfx::System::Net::Sockets
