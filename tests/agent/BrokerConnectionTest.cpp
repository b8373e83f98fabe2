#include "Broker/BrokerConnection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Zent::Discovery::Broker;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(BrokerConnectionTest, ItsGoodbyeIsSaidBeforeTheConnectionIsThere)
{
    // Lets clients connect, and never answers.
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof(address);
    ASSERT_EQ(listen(listener, 5), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    const auto start = Clock::now();
    BrokerConnection connection({.Host = "127.0.0.1", .Port = ntohs(address.sin_port), .ClientId = "c"}, [] {});
    connection.Close();
    EXPECT_LT(Clock::now() - start, 15s); // and not once it counts as refused, or never
    close(listener);
}
