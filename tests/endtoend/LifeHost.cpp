// A host program that is done with the library in one of several ways: life-host LIBRARY LOG WAY
//   exit    calls exit() after the first Hello, while the server runs
//   return  returns from main then
//   unload  terminates the library then, and unloads it
//   forget  unloads it then while the server runs; only Linux keeps it in memory
//   first   loads it and makes the first calls of the process on many threads at once, without a server
// Ends with 0 when the library did as it should.

#include "support/ExtCLoader.h"
#include "support/WaitUntil.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
ExtCFunctions library{};
std::atomic<int> hellos{0};

void DISCOVERY_EXTC_CALL OnHello(const char*)
{
    ++hellos;
}

bool Serve(const char* log)
{
    return library.Initialize(log, DiscoveryLogDebug) == 0 &&
           library.SetHelloMessageReceivedEventCallBack(&OnHello) == 0 && library.StartServer() == 0 &&
           library.InitBroadcastProvider("[\"127.0.0.1\"]") == 0 && library.Discover() == 0 &&
           Tests::WaitUntil([] { return hellos > 0; });
}

bool IsFirstUseRight(const char* path)
{
    constexpr int NullPointer = 41;
    ExtCFunctions functions{};
    if (LoadExtC(path, &functions) == 0)
    {
        return false;
    }
    char* const text = functions.GetErrorMessage(58);
    const bool isRight = text != nullptr && std::strcmp(text, "IO") == 0;
    FreeErrorMessage(text);
    return isRight && functions.SetMinCompatibleVersion("1.0.18") == 0 && functions.Discover() == NullPointer;
}

bool UseFirst(const char* path)
{
    constexpr int Users = 16;
    std::atomic<int> started{0}; // no std::latch: MinGW's may miss its last wake-up
    std::atomic<int> right{0};
    std::vector<std::thread> users;
    for (int number = 0; number < Users; ++number)
    {
        users.emplace_back([&] {
            ++started;
            while (started < Users)
            {
                std::this_thread::yield();
            }
            right += IsFirstUseRight(path) ? 1 : 0;
        });
    }
    for (std::thread& user : users)
    {
        user.join();
    }
    return right == Users;
}
} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4)
    {
        std::fputs("usage: life-host LIBRARY LOG WAY\n", stderr);
        return 2;
    }
    const std::string_view way = argv[3];
    if (way == "first")
    {
        return UseFirst(argv[1]) ? 0 : 1;
    }
    if (LoadExtC(argv[1], &library) == 0)
    {
        return 2;
    }
    if (!Serve(argv[2]))
    {
        std::fputs("life-host: the library does not serve\n", stderr);
        return 1;
    }
    if (way == "exit")
    {
        std::exit(0);
    }
    if (way == "unload")
    {
        const int code = library.Terminate();
        UnloadExtC();
        return code;
    }
    if (way == "forget")
    {
        UnloadExtC();
    }
    return 0;
}
