#include "system/Net/Sockets/UdpClient.h"

#include "corelib/Net/LoopbackSocket.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

namespace Nfx::System::Net::Sockets
{
namespace
{
TEST(UdpClientTest, CarriesWholeArraysAndTheirFirstBytesOnceItHasASocket)
{
    UdpClient client;
    client.Close();
    EXPECT_ERROR(client.Send(Array<std::uint8_t>(1), IPEndPoint(Loopback(), 1)), ErrorCodes::NullReference);
    client.SetClient(OpenLoopback());
    const IPEndPoint self = LoopbackEnd(*client.Client());
    Array<std::uint8_t> bytes(3);
    bytes[2] = 7;

    EXPECT_EQ(client.Send(bytes, self), 3);
    EXPECT_EQ(client.Send(bytes.Data(), 2, self), 2);

    std::uint8_t buffer[8] = {};
    IPEndPoint sender(IPAddress::Broadcast(), 0);
    EXPECT_EQ(client.Receive(buffer, sizeof buffer, sender), 3);
    EXPECT_EQ(buffer[2], 7);
    EXPECT_EQ(sender, self);
    EXPECT_EQ(client.Receive(buffer, sizeof buffer, sender), 2);
    client.Close();
    EXPECT_TRUE(client.Client()->IsClosed());
}
} // namespace
} // namespace Nfx::System::Net::Sockets
