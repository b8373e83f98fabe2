#include "Page/PageServer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

using namespace Zent::Discovery::Page;

namespace
{
/// Waits for events.
class Viewer final
{
public:
    explicit Viewer(const std::string& url)
    {
        const int port = std::atoi(url.c_str() + url.rfind(':') + 1);
        sockaddr_in address = {AF_INET, htons(static_cast<std::uint16_t>(port)), {htonl(INADDR_LOOPBACK)}, {}};
        constexpr std::string_view Request = "GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n";
        EXPECT_EQ(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        EXPECT_EQ(write(descriptor, Request.data(), Request.size()), static_cast<ssize_t>(Request.size()));
        char first = 0;
        EXPECT_EQ(read(descriptor, &first, 1), 1);
    }

    ~Viewer() { close(descriptor); }

    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

private:
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
};

TEST(PageServerTest, EndsWhateverItsViewersAreAboutToGet)
{
    for (int i = 0; i < 100; ++i)
    {
        auto server = std::make_unique<PageServer>(PageSettings());
        server->Listen();
        const Viewer one(server->Url());
        const Viewer other(server->Url());
        server->Update([](PageModel& model) { model.SetSite("s", "ready", ""); });
        server.reset();
    }
}
} // namespace
