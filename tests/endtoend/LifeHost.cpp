// A host program that is done with the library in one of several ways: life-host LIBRARY LOG WAY
//   exit    calls exit() after the first Hello, while the server runs
//   return  returns from main then
//   unload  terminates the library then, and unloads it
//   forget  unloads it then while the server runs; only Linux keeps it in memory
//   first   loads it and makes the first calls of the process on many threads at once, without a server
// Ends with 0 when the library did as it should.

#include "DiscoveryLibrary.h"
#include "support/WaitUntil.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
using Zent::Discovery::DiscoveryFunctions;
using Zent::Discovery::DiscoveryLibrary;

std::atomic<int> hellos{0};

void DISCOVERY_EXTC_CALL OnHello(const char*)
{
    ++hellos;
}

bool Serve(const DiscoveryFunctions& library, const char* log)
{
    return library.Initialize(log, DiscoveryLogDebug) == 0 &&
           library.SetHelloMessageReceivedEventCallBack(&OnHello) == 0 && library.StartServer() == 0 &&
           library.InitBroadcastProvider("[\"127.0.0.1\"]") == 0 && library.Discover() == 0 &&
           Tests::WaitUntil([] { return hellos > 0; });
}

bool IsFirstUseRight(const char* path)
{
    constexpr int NullPointer = 41;
    const DiscoveryLibrary library(path);
    const DiscoveryFunctions& functions = library.Functions();
    return functions.TextOf(58) == "IO" && functions.SetMinCompatibleVersion("1.0.18") == 0 &&
           functions.Discover() == NullPointer;
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

/// Takes the library from memory, as hosts may which have loaded it in their own way.
void Unload([[maybe_unused]] const char* path)
{
#if defined(_WIN32)
    FreeLibrary(GetModuleHandleA(path));
#else
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    dlclose(handle);
    dlclose(handle); // once for this look-up, once for the first loading
#endif
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
    const DiscoveryFunctions library = DiscoveryLibrary(argv[1]).Functions();
    if (!Serve(library, argv[2]))
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
        Unload(argv[1]);
        return code;
    }
    if (way == "forget")
    {
        Unload(argv[1]);
    }
    return 0;
}
