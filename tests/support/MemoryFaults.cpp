#include "support/MemoryFaults.h"

#include <atomic>
#include <utility>

namespace Tests
{
namespace
{
constinit thread_local bool isShortHere = true;
constinit std::atomic<int> number{0};
constinit std::atomic<int> firstFailing{MemoryFaults::Always};
constinit std::atomic<int> lastFailing{MemoryFaults::Always};
constinit std::atomic<int> failed{0};
constinit std::atomic<bool> isActive{false};
} // namespace

void MemoryFaults::Fail(int first, int count)
{
    number = 0;
    failed = 0;
    firstFailing = first;
    lastFailing = first + count - 1;
    isActive = true;
}

int MemoryFaults::Clear() noexcept
{
    isActive = false;
    return failed;
}

int MemoryFaults::Seen() noexcept
{
    return number;
}

int MemoryFaults::Failed() noexcept
{
    return failed;
}

bool MemoryFaults::Strikes() noexcept
{
    if (!isActive || !isShortHere)
    {
        return false;
    }
    const int current = ++number;
    const bool strikes = current >= firstFailing && current <= lastFailing;
    failed += strikes ? 1 : 0;
    return strikes;
}

MemoryFaults::Scope::Scope(bool isShort) noexcept
    : wasShort(std::exchange(isShortHere, isShort))
{
}

MemoryFaults::Scope::~Scope()
{
    isShortHere = wasShort;
}
} // namespace Tests
