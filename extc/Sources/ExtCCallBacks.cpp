#include "ExtCCallBacks.h"

#include "system/Immortal.h"
#include "system/Threading/Lock.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::Immortal;
using Nfx::System::InvalidOperationException;
using Nfx::System::SmartPointer;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Monitor;

namespace
{
struct Block final
{
    Monitor Guard;
    SmartPointer<ExtCCallBacks> CallBacks NFX_GUARDED_BY(Guard);
};

Block& TheBlock()
{
    static const Immortal<Block> block;
    return block.Get();
}
} // namespace

SmartPointer<ExtCCallBacks> ExtCCallBacks::Instance()
{
    Block& block = TheBlock();
    const Lock lock(block.Guard);
    if (block.CallBacks.IsNull())
    {
        throw InvalidOperationException("DiscoveryServerFacade instance is not initialized!",
                                        "extc/Sources/ExtCCallBacks", __LINE__);
    }
    return block.CallBacks;
}

bool ExtCCallBacks::Exists()
{
    Block& block = TheBlock();
    const Lock lock(block.Guard);
    return !block.CallBacks.IsNull();
}

void ExtCCallBacks::Install(const SmartPointer<ExtCCallBacks>& callBacks)
{
    Block& block = TheBlock();
    const Lock lock(block.Guard);
    block.CallBacks = callBacks;
}

void ExtCCallBacks::Destroy()
{
    Block& block = TheBlock();
    const Lock lock(block.Guard);
    block.CallBacks = nullptr;
}
} // namespace Zent::Discovery::ExtC
