#pragma once

#include "Server/HostEventArgs.h"

namespace Zent::Discovery::Server
{
/// A device leaves.
class ByeMessageReceivedEventArgs final : public HostEventArgs
{
public:
    ByeMessageReceivedEventArgs(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                                const Nfx::System::SmartPointer<NICConfig>& sourceNIC)
        : HostEventArgs(host, sourceNIC)
    {
    }
};
} // namespace Zent::Discovery::Server
