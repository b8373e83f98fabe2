#include "ExtCCallBacks.h"

#include "system/Guarded.h"
#include "system/Immortal.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::Guarded;
using Nfx::System::Immortal;
using Nfx::System::InvalidOperationException;
using Nfx::System::SmartPointer;

namespace
{
const char SourceName[] = "extc/Sources/ExtCCallBacks";

using Block = SmartPointer<ExtCCallBacks>; // null unless initialized

Guarded<Block>& TheBlock()
{
    static const Immortal<Guarded<Block>> block;
    return block.Get();
}
} // namespace

SmartPointer<ExtCCallBacks> ExtCCallBacks::Instance()
{
    const Block block = TheBlock().Use([](const Block& current) { return current; });
    if (block.IsNull())
    {
        throw InvalidOperationException("DiscoveryServerFacade instance is not initialized!", SourceName, __LINE__);
    }
    return block;
}

bool ExtCCallBacks::Exists()
{
    return TheBlock().Use([](const Block& current) { return !current.IsNull(); });
}

void ExtCCallBacks::Install(const SmartPointer<ExtCCallBacks>& callBacks)
{
    TheBlock().Use([&](Block& current) { current = callBacks; });
}

void ExtCCallBacks::Destroy()
{
    TheBlock().Use([](Block& current) { current = nullptr; });
}
} // namespace Zent::Discovery::ExtC
