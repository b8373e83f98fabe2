// Calls every function of the library from eight threads at once in a random order, while devices and vandals send and
// the server's socket is lost again and again: stress LIBRARY SECONDS [SEED]
// Needs a network namespace of its own. Ends with 0 when nothing went wrong.

#include "ProcessState.h"
#include "StopTime.h"
#include "Traffic.h"
#include "support/DeviceDatagram.h"
#include "support/ExtCLoader.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

namespace
{
using std::chrono::milliseconds;

constexpr int HostThreads = 8;
constexpr int NullPointer = 41;
constexpr int InvalidFormat = static_cast<int>(0xC0090114u);
constexpr std::uint16_t ServerPort = 12001;

ExtCFunctions library{};
std::atomic<bool> isOver{false};
std::atomic<bool> mustBeSilent{false}; // from the return of StopServer to the next start
std::atomic<std::int64_t> calls{0};
std::atomic<std::int64_t> callbacks{0};
std::atomic<std::int64_t> losses{0};
std::atomic<int> failures{0};

// Initialize and Terminate must be alone. The turnstile lets a writer in although there is always some reader.
std::mutex turnstile;
std::shared_mutex alone;

void Fail(const std::string& what)
{
    ++failures;
    std::fprintf(stderr, "stress: %s\n", what.c_str());
}

void Expect(bool isGood, const std::string& what)
{
    if (!isGood)
    {
        Fail(what);
    }
}

void DISCOVERY_EXTC_CALL OnEvent(const char* hostJson)
{
    Expect(hostJson != nullptr && *hostJson == '{', "a callback without a document");
    Expect(!mustBeSilent, "a callback after StopServer");
    if (++callbacks % 16 == 0)
    {
        const int code = library.Discover();
        Expect(code == 0 || code == NullPointer, "Discover in a callback: " + std::to_string(code));
    }
}

int SetCallback(std::uint32_t choice)
{
    const bool isSet = choice % 4 != 0;
    switch (choice % 3)
    {
    case 0:
        return library.SetClientSignatureReceivedEventCallBack(isSet ? &OnEvent : nullptr);
    case 1:
        return library.SetHelloMessageReceivedEventCallBack(isSet ? &OnEvent : nullptr);
    default:
        return library.SetByeMessageReceivedEventCallBack(isSet ? &OnEvent : nullptr);
    }
}

int Text(int code)
{
    char* const text = library.GetErrorMessage(code);
    const int result = text != nullptr && *text != '\0' ? 0 : -1;
    FreeErrorMessage(text);
    return result;
}

int Configure(bool isWellFormed)
{
    return library.ChangeClientsIPConfigurations(
        isWellFormed ? "[{\"FriendlyName\":\"eth0\",\"MACAddress\":\"02:00:00:00:00:01\",\"IPAddress\":\"127.0.0.9\","
                       "\"SubNetMask\":\"255.0.0.0\",\"DefaultGateway\":\"\"}]"
                     : "[{");
}

int AnyCall(std::uint32_t choice)
{
    const std::uint32_t detail = choice / 256;
    const bool isWellFormed = detail % 8 != 0;
    switch (choice % 100)
    {
    case 0:
        return library.StartServer();
    case 1:
        return library.StopServer();
    default:
        break;
    }
    switch (choice % 9)
    {
    case 0:
        return SetCallback(detail);
    case 1:
        return Text(static_cast<int>(detail));
    case 2:
        return Configure(isWellFormed);
    case 3:
        return library.ChangeClientsHostName("new", isWellFormed ? "02:00:00:00:00:01" : "02:00");
    case 4:
        return library.ChangeClientsHostNameWithIP("new", isWellFormed ? "127.0.0.9" : "127.0.0");
    case 5:
        return library.RefreshClient(isWellFormed ? "02:00:00:00:00:01" : "");
    case 6:
        return library.InitBroadcastProvider(isWellFormed ? "[\"127.0.0.1\",\"127.0.0.2\"]" : "[\"here\"]");
    case 7:
        return detail % 2 == 0 ? library.SetMinCompatibleVersion(isWellFormed ? "1.0.18" : "1")
                               : library.ReachClient(isWellFormed ? "127.0.0.9" : "1.2.3.4.5");
    default:
        return library.Discover();
    }
}

void Open(const std::string& logPath, std::uint32_t choice)
{
    constexpr int Levels[] = {DiscoveryLogCritical, DiscoveryLogStandard, DiscoveryLogDebug, DiscoveryLogNone};
    const int code = library.Initialize(logPath.c_str(), Levels[choice % 4]);
    Expect(code == 0, "Initialize: " + std::to_string(code));
    library.SetClientSignatureReceivedEventCallBack(&OnEvent);
    library.SetHelloMessageReceivedEventCallBack(&OnEvent);
    library.SetByeMessageReceivedEventCallBack(&OnEvent);
}

void Start()
{
    mustBeSilent = false;
    const int code = library.StartServer();
    Expect(code == 0, "StartServer: " + std::to_string(code));
}

void Close()
{
    int code = 0;
    const milliseconds stopTime = Tests::TimeOf([&] { code = library.StopServer(); });
    Expect(code == 0, "StopServer: " + std::to_string(code));
    Expect(stopTime < Tests::StopLimit, "StopServer took " + std::to_string(stopTime.count()) + " ms");
    mustBeSilent = true;
    Expect(Tests::IsServerPortFree(), "the port is taken after StopServer");
    code = library.Terminate();
    Expect(code == 0, "Terminate: " + std::to_string(code));
}

template <class TAction>
void Alone(TAction&& action)
{
    const std::lock_guard gate(turnstile);
    const std::lock_guard guard(alone);
    action();
}

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
    Tests::Traffic traffic;
    while (!isOver)
    {
        traffic.Send(random() % 4 == 0 ? Tests::Traffic::Hostile(random)
                                       : Tests::Traffic::AnyMessage(random, "device"));
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
    bool isLoss = true;
    while (!isOver)
    {
        std::this_thread::sleep_for(milliseconds(random() % 600));
        Alone([&] {
            if (isLoss)
            {
                library.StartServer(); // somebody may have stopped it
                losses += Tests::ShutDownSocketOn(ServerPort) ? 1 : 0;
            }
            else
            {
                Close();
                Open(logPath, static_cast<std::uint32_t>(random()));
                Start();
            }
        });
        isLoss = random() % 4 != 0;
    }
}

void ExpectService()
{
    Tests::Traffic device;
    const std::int64_t before = callbacks;
    Expect(Tests::WaitUntil(
               [&] {
                   device.Send(Tests::DeviceDatagram("Hello", "1.0.18", "last"));
                   return callbacks > before;
               },
               std::chrono::seconds(20)),
           "no service at the end");
}

void Load(int seconds, std::uint32_t seed, const std::string& logPath)
{
    std::vector<std::thread> threads;
    for (std::uint32_t number = 0; number < HostThreads; ++number)
    {
        threads.emplace_back(&CallAll, seed + number);
    }
    threads.emplace_back(&SendAll, seed + HostThreads);
    threads.emplace_back(&Disturb, seed + HostThreads + 1, logPath);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    isOver = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

/// Whether what Disturb does makes the server restart.
void ExpectRestart(const Tests::TemporaryFolder& folder)
{
    Expect(Tests::ShutDownSocketOn(ServerPort), "no socket to lose");
    Expect(Tests::WaitUntil([&] { return folder.Count("restart triggered") > 0; }), "no restart");
}

void Run(int seconds, std::uint32_t seed, const Tests::TemporaryFolder& folder)
{
    const std::string logPath = folder.PathOf("stress.log");
    Open(logPath, 0);
    Start();
    ExpectRestart(folder);
    ExpectService();
    Close();
    const std::int64_t descriptors = Tests::OpenDescriptors();
    const std::int64_t threads = Tests::RunningThreads();
    Open(logPath, 0);
    Start();
    Load(seconds, seed, logPath);
    Expect(calls > 0, "no calls");
    Expect(losses > 0, "no lost sockets");
    Close();
    Open(logPath, 0);
    Start();
    ExpectService();
    Close();
    Expect(Tests::WaitUntil([&] { return Tests::RunningThreads() == threads; }), "threads are left");
    Expect(Tests::OpenDescriptors() == descriptors, "descriptors are left");
}
} // namespace

int main(int argc, char* argv[])
{
    if (argc < 3 || LoadExtC(argv[1], &library) == 0)
    {
        std::fputs("usage: stress LIBRARY SECONDS [SEED]\n", stderr);
        return 2;
    }
    const std::uint32_t seed = argc > 3 ? static_cast<std::uint32_t>(std::atoll(argv[3])) : std::random_device()();
    std::printf("seed %u\n", seed);
    const Tests::TemporaryFolder folder;
    Run(std::atoi(argv[2]), seed, folder);
    std::printf("%lld calls, %lld callbacks, %lld lost sockets, %d failures, %lld KiB resident\n",
                static_cast<long long>(calls), static_cast<long long>(callbacks), static_cast<long long>(losses),
                static_cast<int>(failures), static_cast<long long>(Tests::ResidentKiB()));
    return failures == 0 ? 0 : 1;
}
