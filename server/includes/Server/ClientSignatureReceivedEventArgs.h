#pragma once

#include "Server/HostEventArgs.h"

namespace Zent::Discovery::Server
{
/// A device sent its signature.
class ClientSignatureReceivedEventArgs final : public HostEventArgs
{
public:
    ClientSignatureReceivedEventArgs(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                                     const Nfx::System::SmartPointer<NICConfig>& sourceNIC)
        : HostEventArgs(host, sourceNIC)
    {
    }
};
} // namespace Zent::Discovery::Server
