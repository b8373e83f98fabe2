#include "DiscoverySession.h"

#include <chrono>
#include <iostream>
#include <thread>

int main()
{
    using namespace Zent::Discovery;
    try
    {
        DiscoverySession session("discovery.log");
        session.OnSignature([](const std::string& hostJson) { std::cout << hostJson << std::endl; });
        session.Start();
        session.InitBroadcastProvider({"127.0.0.1"}); // stays on this machine; leave it out to ask the local network
        session.Discover();
        std::this_thread::sleep_for(std::chrono::seconds(2));
    }
    catch (const DiscoveryError& error)
    {
        std::cerr << "sample: " << error.what() << '\n';
        return 1;
    }
}
