// Keeps the library under load, in rounds of disorder and order: soak SECONDS [SEED]
// In disorder eight threads call every function in a random order, while devices and vandals send and the server's
// socket is lost again and again. In order 500 datagrams a second come, one in twenty of them hostile, and requests go
// to a device that answers. Prints a line a round. Needs a network namespace of its own. Ends with 0 when nothing went
// wrong, nothing was lost and nothing has grown.

#include "ProcessState.h"
#include "StopTime.h"
#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/Server.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Tests::DeviceDatagram;
using Tests::ProcessState;
using Tests::Server;

constexpr int HostThreads = 8;
constexpr int NullPointer = 41;
constexpr int InvalidFormat = static_cast<int>(0xC0090114u);
constexpr std::uint16_t ServerPort = 12001;
constexpr int DatagramsPerSecond = 500;
constexpr int HostileShare = 20;
constexpr int MostOnTheirWay = 10; // with hostile ones among them: more than that a receive buffer may not hold
constexpr seconds LongestRound{60};
constexpr double MemoryGrowth = 1024;        // KiB: the allocator's unrest
constexpr double MemoryGrowthPerHour = 1024; // KiB

std::atomic<bool> isOver{false};       // the disorder
std::atomic<bool> mustBeSilent{false}; // from the return of StopServer to the next start
std::atomic<std::int64_t> calls{0};
std::atomic<std::int64_t> callbacks{0};
std::atomic<std::int64_t> reported{0}; // callbacks for the devices of the order
std::atomic<std::int64_t> answers{0};  // callbacks for answers to requests
std::atomic<std::int64_t> losses{0};
std::atomic<int> failures{0};

// Initialize and Terminate must be alone. The turnstile lets a writer in although there is always some reader.
std::mutex turnstile;
std::shared_mutex alone;

void Expect(bool isGood, const std::string& what)
{
    if (!isGood)
    {
        ++failures;
        std::fprintf(stderr, "FAILED: %s\n", what.c_str());
    }
}

void DISCOVERY_EXTC_CALL OnEvent(const char* hostJson)
{
    Expect(hostJson != nullptr && *hostJson == '{', "a callback without a document");
    Expect(!mustBeSilent, "a callback after StopServer");
    const std::string_view document(hostJson);
    reported += document.find("\"device-") != std::string_view::npos ? 1 : 0;
    answers += document.find("\"answer\"") != std::string_view::npos ? 1 : 0;
    if (++callbacks % 16 == 0)
    {
        const int code = Server().Discover();
        Expect(code == 0 || code == NullPointer, "Discover in a callback: " + std::to_string(code));
    }
}

int SetCallback(std::uint32_t choice)
{
    const auto callback = choice % 4 != 0 ? &OnEvent : nullptr;
    switch (choice % 3)
    {
    case 0:
        return Server().SetClientSignatureReceivedEventCallBack(callback);
    case 1:
        return Server().SetHelloMessageReceivedEventCallBack(callback);
    default:
        return Server().SetByeMessageReceivedEventCallBack(callback);
    }
}

int AnyCall(std::uint32_t choice)
{
    const std::uint32_t detail = choice / 256;
    const bool isWellFormed = detail % 8 != 0;
    if (choice % 100 < 2)
    {
        return choice % 100 == 0 ? Server().StartServer() : Server().StopServer();
    }
    switch (choice % 9)
    {
    case 0:
        return SetCallback(detail);
    case 1:
        return Server().TextOf(static_cast<int>(detail)).empty() ? -1 : 0;
    case 2:
        return Server().ChangeClientsIPConfigurations(
            isWellFormed ? "[{\"FriendlyName\":\"eth0\",\"MACAddress\":\"02:00:00:00:00:01\",\"IPAddress\":"
                           "\"127.0.0.9\",\"SubNetMask\":\"255.0.0.0\",\"DefaultGateway\":\"\"}]"
                         : "[{");
    case 3:
        return Server().ChangeClientsHostName("new", isWellFormed ? "02:00:00:00:00:01" : "02:00");
    case 4:
        return Server().ChangeClientsHostNameWithIP("new", isWellFormed ? "127.0.0.9" : "127.0.0");
    case 5:
        return Server().RefreshClient(isWellFormed ? "02:00:00:00:00:01" : "");
    case 6:
        return Server().InitBroadcastProvider(isWellFormed ? "[\"127.0.0.1\",\"127.0.0.2\"]" : "[\"here\"]");
    case 7:
        return detail % 2 == 0 ? Server().SetMinCompatibleVersion(isWellFormed ? "1.0.18" : "1")
                               : Server().ReachClient(isWellFormed ? "127.0.0.9" : "1.2.3.4.5");
    default:
        return Server().Discover();
    }
}

/// Something that is no message: noise, a message cut off or damaged, deep nesting, much of the same.
std::string Hostile(std::mt19937& random)
{
    std::string message = DeviceDatagram("Hello", "1.0.18", "vandal");
    switch (random() % 6)
    {
    case 0:
        message.assign(random() % 2000, '\0');
        std::generate(message.begin(), message.end(), [&] { return static_cast<char>(random()); });
        return message;
    case 1:
        return message.substr(0, random() % message.size());
    case 2:
        message[random() % message.size()] = static_cast<char>(random());
        return "[" + message + "]";
    case 3:
        return std::string(20000, '[');
    case 4:
        return "{\"Host\":" + std::string(random() % 20000, '9') + "}";
    default:
        return DeviceDatagram("Goodbye", "1.0.18", "vandal");
    }
}

std::string AnyMessage(std::mt19937& random, const std::string& hostName)
{
    constexpr const char* Kinds[] = {"SignatureBroadcast", "Hello", "Bye"};
    return DeviceDatagram(Kinds[random() % std::size(Kinds)], "1.0.18", hostName);
}

/// Begins a life of the Server().
void Open(const std::string& logPath, std::uint32_t choice = 0)
{
    constexpr int Levels[] = {DiscoveryLogCritical, DiscoveryLogStandard, DiscoveryLogDebug, DiscoveryLogNone};
    Expect(Server().Initialize(logPath.c_str(), Levels[choice % std::size(Levels)]) == 0, "Initialize");
    Server().SetClientSignatureReceivedEventCallBack(&OnEvent);
    Server().SetHelloMessageReceivedEventCallBack(&OnEvent);
    Server().SetByeMessageReceivedEventCallBack(&OnEvent);
    mustBeSilent = false;
    Expect(Server().StartServer() == 0, "StartServer");
    Expect(Server().InitBroadcastProvider("[\"127.0.0.1\"]") == 0, "InitBroadcastProvider");
}

void Close()
{
    int code = 0;
    const milliseconds stopTime = Tests::TimeOf([&] { code = Server().StopServer(); });
    Expect(code == 0, "StopServer: " + std::to_string(code));
    Expect(stopTime < Tests::StopLimit, "StopServer took " + std::to_string(stopTime.count()) + " ms");
    mustBeSilent = true;
    Expect(Tests::Device::IsServerPortFree(), "the port is taken after StopServer");
    Expect(Server().Terminate() == 0, "Terminate");
}

void ExpectService(Tests::Device& device)
{
    const std::int64_t before = reported;
    const bool isServed = Tests::WaitUntil(
        [&] {
            device.Send(DeviceDatagram("Hello", "1.0.18", "device-probe"));
            return Tests::WaitUntil([&] { return reported > before; }, milliseconds(20));
        },
        seconds(20));
    Expect(isServed, "no service");
}

/// Calls on a thread of their own until the disorder is over.
void CallAll(std::uint32_t seed)
{
    std::mt19937 random(seed);
    while (!isOver)
    {
        {
            const std::lock_guard gate(turnstile);
            alone.lock_shared();
        }
        const std::shared_lock guard(alone, std::adopt_lock);
        const auto choice = static_cast<std::uint32_t>(random());
        const int code = AnyCall(choice);
        Expect(code == 0 || code == NullPointer || code == InvalidFormat,
               "call " + std::to_string(choice) + ": " + std::to_string(code));
        if (++calls % 64 == 0)
        {
            std::this_thread::sleep_for(milliseconds(1)); // else nobody drains what is queued
        }
    }
}

void SendAll(std::uint32_t seed)
{
    std::mt19937 random(seed);
    Tests::Device sender(0);
    while (!isOver)
    {
        sender.Send(random() % 4 == 0 ? Hostile(random) : AnyMessage(random, "disorder"));
        if (random() % 4 == 0)
        {
            std::this_thread::sleep_for(milliseconds(1));
        }
    }
}

/// Loses the socket every now and then, and sometimes begins anew.
void Disturb(std::uint32_t seed, const std::string& logPath)
{
    std::mt19937 random(seed);
    for (bool isLoss = true; !isOver; isLoss = random() % 4 != 0)
    {
        std::this_thread::sleep_for(milliseconds(random() % 600));
        const std::lock_guard gate(turnstile);
        const std::lock_guard guard(alone);
        if (isLoss)
        {
            Server().StartServer(); // somebody may have stopped it
            losses += Tests::ShutDownSocketOn(ServerPort) ? 1 : 0;
        }
        else
        {
            Close();
            Open(logPath, static_cast<std::uint32_t>(random()));
        }
    }
}

void PassDisorder(milliseconds length, std::uint32_t seed, const std::string& logPath)
{
    std::vector<std::thread> threads;
    isOver = false;
    Open(logPath);
    for (std::uint32_t number = 0; number < HostThreads; ++number)
    {
        threads.emplace_back(&CallAll, seed + number);
    }
    threads.emplace_back(&SendAll, seed + HostThreads);
    threads.emplace_back(&Disturb, seed + HostThreads + 1, logPath);
    std::this_thread::sleep_for(length);
    isOver = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    Close();
}

/// What a host and a busy network have to expect of each other: everything is reported and answered.
class Order
{
public:
    Order(std::uint32_t seed, int round)
        : random(seed)
        , firstDevice(50 * round)
    {
    }

    void Pass(milliseconds length)
    {
        ExpectService(sender);
        before = reported;
        const Clock::time_point end = Clock::now() + length;
        while (Clock::now() < end)
        {
            PassSecond();
        }
        Expect(IsReportedBut(0), "callbacks were lost: " + std::to_string(before + sent - reported));
    }

private:
    void PassSecond()
    {
        const std::int64_t answersBefore = answers;
        const Clock::time_point start = Clock::now();
        Expect(Server().ReachClient("127.0.0.1") == 0 && Server().Discover() == 0, "a request was refused");
        for (int number = 0; number < DatagramsPerSecond; ++number)
        {
            std::this_thread::sleep_until(start + number * milliseconds(1000) / DatagramsPerSecond);
            SendOne();
            Expect(IsReportedBut(MostOnTheirWay), "the server falls behind");
        }
        Expect(Tests::WaitUntil([&] { return answers >= answersBefore + 2; }, Tests::StopLimit),
               "a request was not answered");
    }

    void SendOne()
    {
        if (random() % HostileShare == 0)
        {
            sender.Send(Hostile(random));
            return;
        }
        // A hundred devices at a time; others replace them from round to round.
        sender.Send(AnyMessage(random, "device-" + std::to_string(firstDevice + static_cast<int>(random() % 100))));
        ++sent;
    }

    bool IsReportedBut(int count) const
    {
        return Tests::WaitUntil([&] { return reported - before >= sent - count; });
    }

    std::mt19937 random;
    const int firstDevice;
    Tests::Device sender{0};
    std::int64_t before = 0;
    std::int64_t sent = 0;
};

/// One life without disorder, in which the socket is lost once: the server restarts.
void WarmUp(const Tests::TemporaryFolder& folder, const std::string& logPath)
{
    Tests::Device sender(0);
    Open(logPath);
    ExpectService(sender);
    Expect(Tests::ShutDownSocketOn(ServerPort), "no socket to lose");
    Expect(Tests::WaitUntil([&] { return folder.Count("restart triggered") > 0; }), "no restart");
    ExpectService(sender);
    Close();
}

ProcessState PassRound(int round, milliseconds length, std::uint32_t seed, const std::string& logPath)
{
    PassDisorder(length / 2, seed, logPath);
    std::atomic<bool> isAnswered{false};
    Open(logPath);
    Tests::Device device;
    std::thread answering([&] { device.AnswerUntil(isAnswered, DeviceDatagram("Hello", "1.0.18", "answer")); });
    Order(seed, round).Pass(length / 2);
    isAnswered = true;
    answering.join();
    Close();
    const ProcessState state = Tests::CurrentState();
    std::printf(
        "round %d, seed %u: %lld calls, %lld callbacks, %lld lost sockets, %d failures; %lld KiB, %lld threads, "
        "%lld handles\n",
        round + 1, seed, static_cast<long long>(calls), static_cast<long long>(callbacks),
        static_cast<long long>(losses), static_cast<int>(failures), static_cast<long long>(state.Memory),
        static_cast<long long>(state.Threads), static_cast<long long>(state.Handles));
    std::fflush(stdout);
    return state;
}

void Run(seconds length, std::uint32_t seed)
{
    const Tests::TemporaryFolder folder;
    const std::string logPath = folder.PathOf("soak.log");
    WarmUp(folder, logPath);
    const ProcessState before = Tests::CurrentState();
    const auto rounds = static_cast<int>(std::max<std::int64_t>(1, length / LongestRound));
    std::int64_t memory = 0;
    for (int round = 0; round < rounds; ++round)
    {
        const ProcessState after = PassRound(round, std::min<milliseconds>(length, LongestRound),
                                             seed + static_cast<std::uint32_t>(round), logPath);
        Expect(Tests::WaitUntil([&] { return Tests::CurrentState().Threads == before.Threads; }), "threads are left");
        Expect(Tests::WaitUntil([&] { return Tests::CurrentState().Handles == before.Handles; }), "handles are left");
        memory = round == 0 ? after.Memory : memory; // the first round fills caches
        const double hours = static_cast<double>(round * LongestRound.count()) / 3600;
        Expect(static_cast<double>(after.Memory - memory) <= MemoryGrowth + hours * MemoryGrowthPerHour,
               "memory grows");
    }
    Expect(calls > 0 && losses > 0, "no disorder");
}
} // namespace

int main(int argc, char* argv[])
{
    const int length = argc > 1 ? std::atoi(argv[1]) : 0;
    if (argc > 3 || length < 1)
    {
        std::fputs("usage: soak SECONDS [SEED]\n", stderr);
        return 2;
    }
    Run(seconds(length), argc > 2 ? static_cast<std::uint32_t>(std::atoll(argv[2])) : std::random_device()());
    std::printf("%s\n", failures == 0 ? "passed" : "failed");
    return failures == 0 ? 0 : 1;
}
