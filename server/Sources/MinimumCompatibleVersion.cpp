#include "Server/MinimumCompatibleVersion.h"

#include "system/Threading/Lock.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Version;
using Nfx::System::Threading::Lock;
using Nfx::System::Threading::Monitor;

namespace
{
struct State final
{
    Monitor Guard;
    Version Minimum NFX_GUARDED_BY(Guard);
    bool IsSet NFX_GUARDED_BY(Guard) = false;
};

State& Instance()
{
    static State& state = *new State(); // never destroyed: the parser may still run while the process exits
    return state;
}
} // namespace

Version MinimumCompatibleVersion::Get()
{
    State& state = Instance();
    const Lock lock(state.Guard);
    return state.Minimum;
}

void MinimumCompatibleVersion::Set(const Version& version)
{
    State& state = Instance();
    const Lock lock(state.Guard);
    state.Minimum = version;
    state.IsSet = true;
}

bool MinimumCompatibleVersion::IsSet() noexcept
{
    State& state = Instance();
    const Lock lock(state.Guard);
    return state.IsSet;
}
} // namespace Zent::Discovery::Server
