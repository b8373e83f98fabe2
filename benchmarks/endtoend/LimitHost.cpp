#include "endtoend/HostProgram.h"
#include "endtoend/Limit.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Benchmarks
{
namespace
{
sockaddr_in Address(std::uint32_t address, std::uint16_t port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = htonl(address);
    result.sin_port = htons(port);
    return result;
}

/// The limit program: one thread receives and does all there is to do.
class LimitHost final : public HostProgram
{
protected:
    void Start(bool logs, const char* logFile, const char*) override
    {
        limit = std::make_unique<Limit>(&Count, logs ? logFile : nullptr);
        descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const int on = 1;
        const int size = 65536;
        setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        setsockopt(descriptor, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
        setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
        const sockaddr_in local = Address(INADDR_ANY, 12001);
        if (bind(descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0)
        {
            std::exit(EXIT_FAILURE);
        }
    }

    void Stop() override { shutdown(descriptor, SHUT_RDWR); }

    void Discover() override
    {
        const std::string text = limit->Request();
        const sockaddr_in all = Address(INADDR_BROADCAST, 12000);
        sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&all), sizeof all);
    }

    void Receive() override
    {
        std::array<char, 65536> buffer;
        for (;;)
        {
            sockaddr_in sender{};
            socklen_t size = sizeof sender;
            const ssize_t count =
                recvfrom(descriptor, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&sender), &size);
            if (count <= 0)
            {
                return;
            }
            limit->Handle({buffer.data(), static_cast<std::size_t>(count)});
        }
    }

private:
    std::unique_ptr<Limit> limit;
    int descriptor = -1;
};
} // namespace
} // namespace Benchmarks

int main(int argc, char** argv)
{
    return Benchmarks::LimitHost().Run(argc, argv);
}
