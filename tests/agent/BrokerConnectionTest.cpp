#include "Broker/BrokerConnection.h"

#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Zent::Discovery::Broker;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace
{
/// Lets clients connect, and reads nothing of what they say.
class BrokerConnectionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const int smallest = 1;
        setsockopt(listener, SOL_SOCKET, SO_RCVBUF, &smallest, sizeof(smallest));
        socklen_t size = sizeof(address);
        ASSERT_EQ(listen(listener, 5), 0);
        ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
        settings.Port = ntohs(address.sin_port);
    }

    void TearDown() override { close(listener); }

    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    BrokerSettings settings{.Host = "127.0.0.1", .ClientId = "c", .KeepAlive = 60s};
};

TEST_F(BrokerConnectionTest, ItsGoodbyeIsSaidBeforeTheConnectionIsThere)
{
    const auto start = Clock::now();
    BrokerConnection connection(settings, [] {});
    connection.Close();
    EXPECT_LT(Clock::now() - start, 15s); // and not once it counts as refused, or never
}

TEST_F(BrokerConnectionTest, ItsGoodbyeWaitsForNobodyWhoTakesNothing)
{
    BrokerConnection connection(settings, [] {});
    const int client = accept(listener, nullptr, nullptr);
    const char accepted[] = {0x20, 3, 0, 0, 0};
    ASSERT_EQ(write(client, accepted, sizeof(accepted)), ssize_t{sizeof(accepted)});
    ASSERT_TRUE(Tests::WaitUntil([&] { return connection.Publish({"t", std::string(16 << 20, '.')}); }));
    const auto start = Clock::now();
    connection.Close();
    EXPECT_LT(Clock::now() - start, 30s); // and not as long as the broker may be silent
    close(client);
}
} // namespace
