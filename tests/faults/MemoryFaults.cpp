#include "MemoryFaults.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
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

void* Allocate(std::size_t size) noexcept
{
    if (MemoryFaults::Strikes())
    {
        return nullptr;
    }
    const MemoryFaults::Scope spared(false); // one allocation strikes once, here or in malloc
    return std::malloc(size);
}
} // namespace

void MemoryFaults::Fail(int first, int count)
{
    number = 0;
    failed = 0;
    firstFailing = first;
    lastFailing = first + count - 1;
    isActive = true;
}

int MemoryFaults::Clear()
{
    isActive = false;
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

// All that the program and the C++ library allocate for objects, strings and containers.
void* operator new(std::size_t size)
{
    void* const memory = Tests::Allocate(size);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Tests::Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
