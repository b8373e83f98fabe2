#include "Os/IOs.h"
#include "Os/ISocket.h"
#include "corelib/Net/LoopbackSocket.h"
#include "corelib/Net/Repeater.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <netinet/in.h>
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
    for (const int milliseconds : {1, 490, 491, 500, 501})
    {
        const SmartPointer<Socket> socket = OpenLoopback();
        socket->SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, milliseconds);
        EXPECT_EQ(ErrorOf([&] { ReceiveText(*socket); }), SocketError::TimedOut) << milliseconds;
    }
}

TEST(SocketPosixTest, ProgramsThatTheProcessStartsInheritNoSocket)
{
    EXPECT_NE(::fcntl(Descriptor(*OpenSocket()), F_GETFD) & FD_CLOEXEC, 0);
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

/// A host program that opens and closes sockets of its own all the time, and so gets every number that is given back.
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

    /// The calls that another's use of one of the host's numbers made fail.
    int Disturbed() const { return disturbed; }

private:
    void Run()
    {
        while (!stop)
        {
            const int descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
            disturbed += UseUndisturbed(descriptor) ? 0 : 1;
            disturbed += ::close(descriptor) == 0 ? 0 : 1;
        }
    }

    static bool UseUndisturbed(int descriptor)
    {
        sockaddr_in self = {};
        socklen_t size = sizeof self;
        self.sin_family = AF_INET;
        ::inet_pton(AF_INET, "127.0.0.2", &self.sin_addr);
        auto* const address = reinterpret_cast<sockaddr*>(&self);
        char byte = 0;
        return ::bind(descriptor, address, size) == 0 && ::getsockname(descriptor, address, &size) == 0 &&
               ::sendto(descriptor, &byte, 1, 0, address, size) == 1 && ::recv(descriptor, &byte, 1, MSG_DONTWAIT) == 1;
    }

    std::atomic<bool> stop{false}; // set by the owner, read by the thread
    std::atomic<int> disturbed{0}; // counted by the thread, read by the owner
    std::thread thread;
};

TEST(SocketPosixTest, NumberIsNotGivenBackUnderARunningOperation)
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
