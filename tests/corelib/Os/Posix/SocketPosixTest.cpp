#include "Os/IOs.h"
#include "Os/ISocket.h"
#include "corelib/Net/LoopbackSocket.h"
#include "corelib/Net/Repeater.h"
#include "support/RunOnThreads.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <pthread.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace Nfx::System::Net::Sockets
{
namespace
{
int Descriptor(const Socket& socket)
{
    return static_cast<int>(std::intptr_t{socket.Handle()});
}

/// True when the thread waits in the system.
bool Sleeps(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    return std::getline(file, line) && line.find(") S ") != std::string::npos;
}

TEST(SocketPosixTest, ShutdownByAnybodyEndsReceivesAndSends)
{
    for (int cycle = 0; cycle < 50; ++cycle)
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        SocketError ending;
        std::thread receiver([&] { ending = ErrorOf([&] { ReceiveText(*socket); }); });
        ASSERT_EQ(Os::Platform().Socket().Shutdown(socket->Handle(), SocketShutdown::Both), 0);
        receiver.join();
        ASSERT_EQ(ending, SocketError::Shutdown);
        ASSERT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::Shutdown);
        ASSERT_EQ(ErrorOf([&] { SendText(*socket, "late", LoopbackEnd(*socket)); }), SocketError::Shutdown);
    }
}

TEST(SocketPosixTest, AddressOfAnotherMachineIsNotAvailable)
{
    EXPECT_EQ(ErrorOf([&] { BindTo(*OpenSocket(), IPAddress::Parse("203.0.113.1"), 0); }),
              SocketError::AddressNotAvailable);
}

TEST(SocketPosixTest, ClosedPortOfAConnectedPeerIsAReset)
{
    const SmartPointer<Socket> socket = OpenLoopback();
    const IPEndPoint closedPort = LoopbackEnd(*OpenLoopback());
    socket->Connect(closedPort);
    SendText(*socket, "anybody there", closedPort);
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::ConnectionReset);
    SendText(*socket, "anybody there", closedPort);
    EXPECT_EQ(ErrorOf([&] { SendText(*socket, "still nobody", closedPort); }), SocketError::ConnectionReset);
}

TEST(SocketPosixTest, ReceiveOnASocketThatSomebodyMadeNonBlockingBlocks)
{
    const SmartPointer<Socket> socket = OpenSocket();
    socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, 0);
    BindTo(*socket, Loopback(), 0);
    ASSERT_EQ(::fcntl(Descriptor(*socket), F_SETFL, O_NONBLOCK), 0);

    std::thread sender([&] { SendText(*OpenLoopback(), "at last", LoopbackEnd(*socket)); });
    EXPECT_EQ(ReceiveText(*socket).Text, "at last");
    sender.join();

    std::thread stopper([&] { socket->Shutdown(SocketShutdown::Both); });
    EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::Shutdown);
    stopper.join();
}

TEST(SocketPosixTest, ReceiveNoticesThatSomebodyHasClosedItsDescriptor)
{
    for (const int flags : {0, O_NONBLOCK})
    {
        const SmartPointer<Socket> socket = OpenSocket();
        socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, 0);
        BindTo(*socket, Loopback(), 0);
        ASSERT_EQ(::fcntl(Descriptor(*socket), F_SETFL, flags), 0);
        SocketError ending;
        std::atomic<pid_t> id{0};
        std::thread receiver([&] {
            id = ::gettid();
            ending = ErrorOf([&] { ReceiveText(*socket); });
        });
        ASSERT_TRUE(Tests::WaitUntil([&] { return id != 0 && Sleeps(id); }));
        const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::dup2(other, Descriptor(*socket)), Descriptor(*socket)); // closes the socket in the same step
        ::close(other);
        receiver.join();
        EXPECT_EQ(ending, SocketError::NotSocket);
    }
}

TEST(SocketPosixTest, EveryTimeoutEndsItsReceive)
{
    constexpr int Timeouts[] = {1, 490, 491, 500, 501}; // milliseconds
    Tests::RunOnThreads(static_cast<int>(std::size(Timeouts)), [&Timeouts](int number) {
        const SmartPointer<Socket> socket = OpenLoopback();
        socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, Timeouts[number]);
        EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::TimedOut) << Timeouts[number];
    });
}

TEST(SocketPosixTest, ProgramsThatTheProcessStartsInheritNoSocket)
{
    EXPECT_NE(::fcntl(Descriptor(*OpenSocket()), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(SocketPosixTest, APortIsUsedWhileASocketIsBoundToItOnAnyAddress)
{
    const SmartPointer<Socket> socket = OpenSocket();
    BindTo(*socket, IPAddress::Parse("127.0.0.3"), 0);
    const std::int32_t port = socket->LocalEndPoint().Port();
    EXPECT_TRUE(Socket::IsPortUsed(port));
    socket->Close();
    EXPECT_FALSE(Socket::IsPortUsed(port));
}

TEST(SocketPosixTest, SignalsInterruptNothing)
{
    struct sigaction ignored = {};
    ignored.sa_handler = [](int) {};
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGUSR1, &ignored, &before), 0);

    const SmartPointer<Socket> socket = OpenLoopback();
    String received;
    std::thread receiver([&] { received = ReceiveText(*socket).Text; });
    for (int signal = 0; signal < 10000; ++signal)
    {
        ASSERT_EQ(::pthread_kill(receiver.native_handle(), SIGUSR1), 0);
    }
    SendText(*socket, "undisturbed", LoopbackEnd(*socket));
    receiver.join();
    EXPECT_EQ(received, "undisturbed");
    ::sigaction(SIGUSR1, &before, nullptr);
}
} // namespace
} // namespace Nfx::System::Net::Sockets
