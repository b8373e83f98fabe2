#include "Os/Faults.h"
#include "system/Net/Sockets/Socket.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

namespace Tests
{
using namespace Nfx::System;
using namespace Nfx::System::Net;
using namespace Nfx::System::Net::Sockets;

TEST(SocketFaultTest, ACloseLeavesTheHandleToTheOperationThatHasYetToUseIt)
{
    const int before = Faults::OpenHandles();
    Socket socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp);
    Gate door;
    Faults::Hold(Call::Send, door);
    std::thread sender([&] {
        const std::uint8_t bytes[] = {1};
        EXPECT_THROW(socket.SendTo(bytes, 1, IPEndPoint(IPAddress::Parse("127.0.0.1"), 9)), ObjectClosedException);
    });
    EXPECT_TRUE(door.WaitForArrivals(1));
    socket.Close();
    EXPECT_EQ(before + 1, Faults::OpenHandles());
    door.Open();
    sender.join();
    EXPECT_EQ(before, Faults::OpenHandles());
    Faults::Clear();
}
} // namespace Tests
