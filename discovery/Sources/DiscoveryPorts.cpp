#include "Discovery/DiscoveryPorts.h"

namespace Zent::Discovery
{
using Nfx::System::Int32;
using Nfx::System::SmartPointer;

const SmartPointer<DiscoveryPorts>& DiscoveryPorts::GetInstance()
{
    // Never destroyed: threads may still send while the process exits.
    static const SmartPointer<DiscoveryPorts>& instance = *new SmartPointer<DiscoveryPorts>(new DiscoveryPorts());
    return instance;
}

const Int32& DiscoveryPorts::ClientPort() const
{
    static const Int32& port = *new Int32(12000);
    return port;
}

const Int32& DiscoveryPorts::ServerPort() const
{
    static const Int32& port = *new Int32(12001);
    return port;
}
} // namespace Zent::Discovery
