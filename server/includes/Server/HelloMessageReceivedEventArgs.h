#pragma once

#include "Server/HostEventArgs.h"

namespace Zent::Discovery::Server
{
/// A device has come.
class HelloMessageReceivedEventArgs final : public HostEventArgs
{
public:
    HelloMessageReceivedEventArgs(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                                  const Nfx::System::SmartPointer<NICConfig>& sourceNIC)
        : HostEventArgs(host, sourceNIC)
    {
    }
};
} // namespace Zent::Discovery::Server
