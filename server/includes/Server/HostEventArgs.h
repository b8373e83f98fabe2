#pragma once

#include "Discovery/DiscoveryHost.h"
#include "Discovery/NICConfig.h"
#include "system/EventArgs.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// What every event for the host application carries: the device, and the interface it sent from when it said so.
class HostEventArgs : public Nfx::System::EventArgs
{
public:
    const Nfx::System::SmartPointer<DiscoveryHost>& Host() const noexcept { return host; }

    /// Null when the message carried none.
    const Nfx::System::SmartPointer<NICConfig>& SourceNIC() const noexcept { return sourceNIC; }

protected:
    HostEventArgs(const Nfx::System::SmartPointer<DiscoveryHost>& host,
                  const Nfx::System::SmartPointer<NICConfig>& sourceNIC)
        : host(host)
        , sourceNIC(sourceNIC)
    {
    }

private:
    const Nfx::System::SmartPointer<DiscoveryHost> host;
    const Nfx::System::SmartPointer<NICConfig> sourceNIC;
};
} // namespace Zent::Discovery::Server
