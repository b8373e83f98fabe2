#include "Server/DiscoveryServerFacade.h"

#include "system/Immortal.h"
#include "system/Threading/Lock.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Immortal;
using Nfx::System::SmartPointer;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Monitor;

namespace
{
struct Singleton final
{
    Monitor Guard;
    SmartPointer<DiscoveryServerFacade> Instance NFX_GUARDED_BY(Guard);
};

Singleton& TheSingleton()
{
    static const Immortal<Singleton> singleton;
    return singleton.Get();
}
} // namespace

SmartPointer<DiscoveryServerFacade> DiscoveryServerFacade::Instance()
{
    Singleton& singleton = TheSingleton();
    const Lock lock(singleton.Guard);
    if (singleton.Instance.IsNull())
    {
        singleton.Instance = new DiscoveryServerFacade();
    }
    return singleton.Instance;
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
    Singleton& singleton = TheSingleton();
    SmartPointer<DiscoveryServerFacade> released; // destroyed outside the lock: the server may have to wait
    const Lock lock(singleton.Guard);
    released = std::move(singleton.Instance);
}
} // namespace Zent::Discovery::Server
