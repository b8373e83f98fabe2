#include "Discovery/DiscoveryPorts.h"

#include "system/Immortal.h"

namespace Zent::Discovery
{
using Nfx::System::Immortal;
using Nfx::System::Int32;
using Nfx::System::SmartPointer;

const SmartPointer<DiscoveryPorts>& DiscoveryPorts::GetInstance()
{
    // Never destroyed: threads may still send while the process exits.
    static const Immortal<SmartPointer<DiscoveryPorts>> instance(new DiscoveryPorts());
    return instance.Get();
}

const Int32& DiscoveryPorts::ClientPort() const
{
    static const Immortal<Int32> port(12000);
    return port.Get();
}

const Int32& DiscoveryPorts::ServerPort() const
{
    static const Immortal<Int32> port(12001);
    return port.Get();
}
} // namespace Zent::Discovery
