#include "Server/DiscoveryServerFacade.h"

#include "system/Guarded.h"
#include "system/Immortal.h"

#include <utility>

namespace Zent::Discovery::Server
{
using Nfx::System::Guarded;
using Nfx::System::Immortal;
using Nfx::System::SmartPointer;

namespace
{
using Facade = SmartPointer<DiscoveryServerFacade>; // null until it is asked for

Guarded<Facade>& TheFacade()
{
    static const Immortal<Guarded<Facade>> facade;
    return facade.Get();
}
} // namespace

SmartPointer<DiscoveryServerFacade> DiscoveryServerFacade::Instance()
{
    return TheFacade().Use([](Facade& facade) {
        if (facade.IsNull())
        {
            facade = new DiscoveryServerFacade();
        }
        return facade;
    });
}

SmartPointer<DiscoveryServerFacade> DiscoveryServerFacade::InstanceThatCanStart()
{
    if (Instance()->Server().HasFailed())
    {
        Destroy();
    }
    return Instance();
}

void DiscoveryServerFacade::Destroy()
{
    // It goes at the end of this function, without the lock: its server may have to wait.
    const Facade released = TheFacade().Use([](Facade& facade) { return std::move(facade); });
}
} // namespace Zent::Discovery::Server
