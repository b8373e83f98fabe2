#include "support/DeviceDatagram.h"
#include "support/ExtCLoader.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"
#include "system/Exceptions.h"
#include "system/Net/Sockets/Socket.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace
{
using Nfx::System::Exception;
using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketType;

/// A device that answers every request at once, to where it came from.
class InstantDevice final
{
public:
    InstantDevice()
        : socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp)
    {
        constexpr int LookAroundMilliseconds = 200;
        constexpr int Port = 12000;
        socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, LookAroundMilliseconds);
        socket.Bind(SmartPointer<EndPoint>(new IPEndPoint(IPAddress::Any(), Port)));
        thread = std::thread([this] { Answer(); });
    }

    ~InstantDevice()
    {
        isOver = true;
        thread.join();
    }

    InstantDevice(const InstantDevice&) = delete;
    InstantDevice& operator=(const InstantDevice&) = delete;

private:
    void Answer()
    {
        const std::string answer = Tests::DeviceDatagram("SignatureBroadcast", "1.0.18", "at once");
        std::array<std::uint8_t, 2048> buffer{};
        while (!isOver)
        {
            try
            {
                IPEndPoint sender(IPAddress::Broadcast(), 0);
                socket.ReceiveFrom(buffer.data(), static_cast<std::int32_t>(buffer.size()), sender);
                socket.SendTo(reinterpret_cast<const std::uint8_t*>(answer.data()),
                              static_cast<std::int32_t>(answer.size()), sender);
            }
            catch (const Exception&) // nobody asks just now
            {
            }
        }
    }

    Socket socket;
    std::atomic<bool> isOver{false};
    std::thread thread;
};

std::atomic<int> answers{0};

void DISCOVERY_EXTC_CALL OnSignature(const char*)
{
    ++answers;
}

/// The broadcast provider's sockets are the better match for what is sent to their addresses.
TEST(AnswerTest, LongNoAnswerIsLostToTheBroadcastProvider)
{
    constexpr int Rounds = 1000;
    const Tests::TemporaryFolder folder;
    ExtCFunctions server{};
    ASSERT_NE(0, LoadExtC(EXTC_LIBRARY, &server));
    ASSERT_EQ(0, server.Initialize(folder.PathOf("log.txt").c_str(), DiscoveryLogCritical));
    ASSERT_EQ(0, server.SetClientSignatureReceivedEventCallBack(&OnSignature));
    ASSERT_EQ(0, server.StartServer());
    ASSERT_EQ(0, server.InitBroadcastProvider("[\"127.0.0.1\"]"));
    const InstantDevice device;
    int lost = 0;
    for (int round = 0; round < Rounds && lost < 10; ++round)
    {
        const int expected = answers + 2;
        ASSERT_EQ(0, server.ReachClient("127.0.0.1")); // its answer comes while the broadcast is being sent
        if (round % 2 == 0)
        {
            ASSERT_EQ(0, server.InitBroadcastProvider("[\"127.0.0.1\"]")); // new sockets for this one
        }
        ASSERT_EQ(0, server.Discover());
        if (!Tests::WaitUntil([&] { return answers >= expected; }, std::chrono::seconds(2)))
        {
            lost += expected - answers;
        }
    }
    EXPECT_EQ(0, lost);
    EXPECT_EQ(0, server.Terminate());
}
} // namespace
