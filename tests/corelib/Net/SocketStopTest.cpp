#include "corelib/Net/LoopbackSocket.h"
#include "corelib/Net/Repeater.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace Nfx::System::Net::Sockets
{
namespace
{
TEST(SocketStopTest, CloseAndShutdownWakeABlockedReceiver)
{
    for (int cycle = 0; cycle < 200; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        Repeater receiver([&] { ReceiveText(*socket); });
        SendText(*socket, "the next receive blocks", LoopbackEnd(*socket));
        receiver.AwaitStart();
        const bool isClose = cycle % 2 == 0;
        isClose ? socket->Close() : socket->Shutdown(SocketShutdown::Both);
        ASSERT_EQ(receiver.Ending(), isClose ? "closed" : "Shutdown");
    }
}

TEST(SocketStopTest, StopUnderTrafficByManyEndsEveryThreadWithOneOfTwoReasons)
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

        if (cycle % 2 == 0)
        {
            socket->Shutdown(SocketShutdown::Both);
        }
        std::vector<std::thread> closers;
        for (int index = 0; index < 4; ++index)
        {
            closers.emplace_back([&] { socket->Close(); });
        }
        for (std::thread& closer : closers)
        {
            closer.join();
        }
        for (Repeater* const repeater : {&receiver, &sender, &otherSender})
        {
            const String ending = repeater->Ending();
            ASSERT_TRUE(ending == "closed" || ending == "Shutdown") << ending.View();
        }
    }
}
} // namespace
} // namespace Nfx::System::Net::Sockets
