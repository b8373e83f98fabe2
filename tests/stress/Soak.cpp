// Keeps the library under the load of a busy network: soak LIBRARY MINUTES
// 500 datagrams a second, one in twenty hostile; one request a second to a device that answers; a lost socket a minute.
// Prints a line a minute. Needs a network namespace of its own. Ends with 0 when nothing grew and nothing was lost.

#include "ProcessState.h"
#include "Traffic.h"
#include "support/DeviceDatagram.h"
#include "support/ExtCLoader.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"
#include "system/Exception.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
using Clock = std::chrono::steady_clock;
using Nfx::System::Exception;
using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketType;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint16_t ServerPort = 12001;
constexpr std::int32_t DevicePort = 12000;
constexpr int DatagramsPerSecond = 500;
constexpr int HostileShare = 20;
constexpr double MemorySlopeLimit = 1024; // KiB an hour
constexpr double MemoryNoise = 256;       // KiB: in a short run the allocator's unrest makes any slope

ExtCFunctions library{};
std::atomic<std::int64_t> reported{0};
std::atomic<std::int64_t> answers{0};
std::atomic<std::int64_t> probes{0};
std::atomic<bool> isListening{false};
std::atomic<bool> isOver{false};
int failures = 0;

void Expect(bool isGood, const char* what)
{
    if (!isGood)
    {
        ++failures;
        std::printf("FAILED: %s\n", what);
    }
}

void DISCOVERY_EXTC_CALL OnEvent(const char* hostJson)
{
    const std::string_view document(hostJson);
    if (document.find("\"device-") != std::string_view::npos)
    {
        ++reported;
    }
    else if (document.find("\"answer\"") != std::string_view::npos)
    {
        ++answers;
    }
    else if (document.find("\"probe\"") != std::string_view::npos)
    {
        ++probes;
    }
}

/// Answers every request to 127.0.0.10 until the end.
void AnswerRequests()
{
    Socket socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp);
    socket.SetSocketOption(Nfx::System::Net::Sockets::SocketOptionLevel::Socket,
                           Nfx::System::Net::Sockets::SocketOptionName::ReceiveTimeout, 200);
    socket.Bind(SmartPointer<EndPoint>(new IPEndPoint(IPAddress::Parse("127.0.0.10"), DevicePort)));
    isListening = true;
    Tests::Traffic device;
    std::vector<std::uint8_t> buffer(65536);
    while (!isOver)
    {
        try
        {
            IPEndPoint sender(IPAddress::Broadcast(), 0);
            socket.ReceiveFrom(buffer.data(), static_cast<std::int32_t>(buffer.size()), sender);
            device.Send(Tests::DeviceDatagram("SignatureBroadcast", "1.0.18", "answer"));
        }
        catch (const Exception&) // nothing to answer just now
        {
        }
    }
}

class Soak
{
public:
    explicit Soak(int minutes)
        : end(Clock::now() + std::chrono::minutes(minutes))
    {
    }

    void Run()
    {
        for (int second = 1; Clock::now() < end; ++second)
        {
            PassSecond();
            Sample(second);
            if (second % 60 == 30)
            {
                LoseSocket();
            }
            if (second % 60 == 0)
            {
                AwaitReports();
                Report(second / 60);
            }
        }
        AwaitReports();
        ExpectConstant();
    }

private:
    void PassSecond()
    {
        const Clock::time_point start = Clock::now();
        const std::int64_t answersBefore = answers;
        Expect(library.ReachClient("127.0.0.10") == 0, "a request was refused");
        Expect(library.Discover() == 0, "a request was refused");
        for (int number = 0; number < DatagramsPerSecond; ++number)
        {
            std::this_thread::sleep_until(start + number * milliseconds(1000) / DatagramsPerSecond);
            SendOne();
        }
        std::this_thread::sleep_until(start + seconds(1));
        if (answers == answersBefore)
        {
            ++unanswered;
            Expect(false, "a request was not answered within a second");
        }
    }

    void SendOne()
    {
        if (random() % HostileShare == 0)
        {
            traffic.Send(Tests::Traffic::Hostile(random));
            return;
        }
        // A hundred devices at a time; they are replaced by others as the minutes pass.
        const std::uint64_t device = sent / 30000 * 50 + random() % 100;
        traffic.Send(Tests::Traffic::AnyMessage(random, "device-" + std::to_string(device)));
        ++sent;
    }

    void AwaitReports()
    {
        const bool isComplete = Tests::WaitUntil([this] { return reported >= static_cast<std::int64_t>(sent) - lost; });
        if (!isComplete)
        {
            lost = static_cast<std::int64_t>(sent) - reported;
        }
        Expect(isComplete, "callbacks were lost");
    }

    void LoseSocket()
    {
        AwaitReports();
        const std::uint64_t former = Tests::SocketOn(ServerPort);
        Expect(Tests::ShutDownSocketOn(ServerPort), "the server has no socket");
        Tests::WaitUntil([&] { return Tests::SocketOn(ServerPort) != 0 && Tests::SocketOn(ServerPort) != former; });
        const std::int64_t before = probes;
        const bool isBack = Tests::WaitUntil(
            [&] {
                traffic.Send(Tests::DeviceDatagram("Hello", "1.0.18", "probe"));
                std::this_thread::sleep_for(milliseconds(10));
                return probes > before;
            },
            seconds(5));
        Expect(isBack, "the server did not restart");
        restarts += isBack ? 1 : 0;
    }

    void Sample(int second)
    {
        if (second % 5 == 0 && second > 60) // the first minute fills caches
        {
            hours.push_back(second / 3600.0);
            memory.push_back(static_cast<double>(Tests::ResidentKiB()));
        }
        if (second == 60)
        {
            descriptors = Tests::OpenDescriptors();
            threads = Tests::RunningThreads();
        }
    }

    void Report(int minute) const
    {
        std::printf(
            "minute %d: %lld KiB, slope %+.0f KiB/h, %lld threads, %lld handles, %llu sent, %lld lost callbacks, "
            "%d restarts, %d unanswered\n",
            minute, static_cast<long long>(Tests::ResidentKiB()), Slope(),
            static_cast<long long>(Tests::RunningThreads()), static_cast<long long>(Tests::OpenDescriptors()),
            static_cast<unsigned long long>(sent), static_cast<long long>(lost), restarts, unanswered);
        std::fflush(stdout);
    }

    /// The steepness of the line through the samples, in KiB an hour.
    double Slope() const
    {
        const auto count = static_cast<double>(hours.size());
        double sumX = 0;
        double sumY = 0;
        double sumXX = 0;
        double sumXY = 0;
        for (std::size_t index = 0; index < hours.size(); ++index)
        {
            sumX += hours[index];
            sumY += memory[index];
            sumXX += hours[index] * hours[index];
            sumXY += hours[index] * memory[index];
        }
        const double spread = count * sumXX - sumX * sumX;
        return spread > 0 ? (count * sumXY - sumX * sumY) / spread : 0;
    }

    void ExpectConstant() const
    {
        if (hours.size() < 2)
        {
            return;
        }
        const double growth = Slope() * (hours.back() - hours.front());
        Expect(Slope() <= MemorySlopeLimit || growth <= MemoryNoise, "memory grows");
        Expect(Tests::RunningThreads() == threads, "the number of threads has changed");
        Expect(Tests::OpenDescriptors() == descriptors, "the number of handles has changed");
    }

    const Clock::time_point end;
    Tests::Traffic traffic;
    std::mt19937 random{1};
    std::uint64_t sent = 0;
    std::int64_t lost = 0;
    int restarts = 0;
    int unanswered = 0;
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    std::vector<double> hours;
    std::vector<double> memory;
};
} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3 || std::atoi(argv[2]) < 1 || LoadExtC(argv[1], &library) == 0)
    {
        std::fputs("usage: soak LIBRARY MINUTES\n", stderr);
        return 2;
    }
    const Tests::TemporaryFolder folder;
    Expect(library.Initialize(folder.PathOf("soak.log").c_str(), DiscoveryLogCritical) == 0, "Initialize");
    library.SetClientSignatureReceivedEventCallBack(&OnEvent);
    library.SetHelloMessageReceivedEventCallBack(&OnEvent);
    library.SetByeMessageReceivedEventCallBack(&OnEvent);
    Expect(library.StartServer() == 0, "StartServer");
    Expect(library.InitBroadcastProvider("[\"127.0.0.1\"]") == 0, "InitBroadcastProvider");
    std::thread device(&AnswerRequests);
    Expect(Tests::WaitUntil([] { return isListening.load(); }), "the device does not listen");
    Soak(std::atoi(argv[2])).Run();
    isOver = true;
    device.join();
    Expect(library.StopServer() == 0, "StopServer");
    Expect(Tests::IsServerPortFree(), "the port is taken after StopServer");
    Expect(library.Terminate() == 0, "Terminate");
    std::printf("%s\n", failures == 0 ? "passed" : "failed");
    return failures == 0 ? 0 : 1;
}
