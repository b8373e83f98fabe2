#include "Os/Faults.h"

#include "support/MemoryFaults.h"

#include <atomic>
#include <map>
#include <mutex>

namespace Tests
{
namespace
{
struct Plan final
{
    int Seen = 0;
    int First = 0; // 0: none fails
    int Count = 0;
    std::int32_t Error = 0;
    Gate* Held = nullptr;
    int HeldFrom = 1;
};

struct State final
{
    std::mutex Mutex;
    std::map<Call, Plan> Plans; // guarded by Mutex
    int Failed = 0;             // guarded by Mutex
    std::atomic<int> Open{0};
};

State& TheState()
{
    static State& state = *new State();
    return state;
}
} // namespace

void Faults::Fail(Call call, int first, int count, std::int32_t error)
{
    State& state = TheState();
    const std::lock_guard lock(state.Mutex);
    Plan& plan = state.Plans[call];
    plan.Seen = 0;
    plan.First = first;
    plan.Count = count;
    plan.Error = error;
}

void Faults::Hold(Call call, Gate& gate, int first)
{
    State& state = TheState();
    const std::lock_guard lock(state.Mutex);
    Plan& plan = state.Plans[call];
    plan.Seen = 0;
    plan.Held = &gate;
    plan.HeldFrom = first;
}

void Faults::Clear()
{
    State& state = TheState();
    const std::lock_guard lock(state.Mutex);
    state.Plans.clear();
    state.Failed = 0;
}

int Faults::FailedCalls()
{
    State& state = TheState();
    const std::lock_guard lock(state.Mutex);
    return state.Failed;
}

int Faults::OpenHandles()
{
    return TheState().Open;
}

bool Faults::Strikes(Call call, std::int32_t& error)
{
    const MemoryFaults::Scope spared(false);
    State& state = TheState();
    Gate* held = nullptr;
    bool strikes = false;
    {
        const std::lock_guard lock(state.Mutex);
        Plan& plan = state.Plans[call];
        ++plan.Seen;
        held = plan.Seen >= plan.HeldFrom ? plan.Held : nullptr;
        strikes = plan.First > 0 && plan.Seen >= plan.First && plan.Seen - plan.First < plan.Count;
        if (strikes)
        {
            ++state.Failed;
            error = plan.Error;
        }
    }
    if (held != nullptr)
    {
        held->Pass();
    }
    return strikes;
}

bool Faults::Strikes(Call call)
{
    std::int32_t ignored = 0;
    return Strikes(call, ignored);
}

void Faults::CountOpened(bool isOpened) noexcept
{
    TheState().Open += isOpened ? 1 : 0;
}

void Faults::CountClosed() noexcept
{
    --TheState().Open;
}
} // namespace Tests
