#include "Server/MinimumCompatibleVersion.h"

#include "system/Immortal.h"
#include "system/Threading/Lock.h"

namespace Zent::Discovery::Server
{
using Nfx::System::Immortal;
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
    static const Immortal<State> state;
    return state.Get();
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

bool MinimumCompatibleVersion::IsSet()
{
    State& state = Instance();
    const Lock lock(state.Guard);
    return state.IsSet;
}
} // namespace Zent::Discovery::Server
