// A host program in C++ with the devices themselves: shows with which version of the library it was built.

#include <DiscoveryInventorySession.h>
#include <DiscoverySession.h>
#include <iostream>

int main()
{
    static_assert(Zent::Discovery::DiscoveryError::InvalidFormat == static_cast<int>(0xC0090114u));
    std::cout << DISCOVERY_EXTC_VERSION_MAJOR << '.' << DISCOVERY_EXTC_VERSION_MINOR << '.'
              << DISCOVERY_EXTC_VERSION_PATCH << ' ' << Zent::Discovery::DiscoveryError::TextOf(DiscoveryResultSocket)
              << '\n';
}
