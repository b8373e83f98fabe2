#include "DiscoveryInventorySession.h"

#include <iostream>

int main()
{
    using namespace Zent::Discovery;
    try
    {
        DiscoverySession session("discovery.log");
        session.Start();
        session.InitBroadcastProvider({"127.0.0.1"}); // stays on this machine; leave it out to ask the local network

        DiscoveryInventorySession inventory(session);
        inventory.OnAppeared([](const DeviceChange& change) {
            std::cout << change.Description.HostName << ", a " << change.Description.DeviceType << '\n';
        });
        const SearchResult result = inventory.Discover();
        std::cout << result.Devices.size() << " devices, all that there are\n";

        const std::string macAddress = result.Devices.at(0).Description.NICs.at(0).MACAddress;
        const ChangeOutcome change = inventory.Rename("press-4", macAddress);
        std::cout << *change.Before << " became " << *change.After << '\n';
        inventory.Undo(change);
    }
    catch (const std::exception& error)
    {
        std::cerr << "inventory: " << error.what() << '\n';
        return 1;
    }
}
