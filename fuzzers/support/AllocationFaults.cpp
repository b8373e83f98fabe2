#include "support/AllocationFaults.h"

#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

namespace Fuzzing
{
namespace
{
constexpr std::size_t Never = std::numeric_limits<std::size_t>::max();

struct State
{
    bool IsActive = false;
    bool HasFailed = false;
    std::size_t Count = 0;
    std::size_t FirstFailing = Never;
    std::size_t LastFailing = Never;
};

thread_local State state;

bool IsNextToFail() noexcept
{
    if (!state.IsActive)
    {
        return false;
    }
    ++state.Count;
    const bool fails = state.Count >= state.FirstFailing && state.Count <= state.LastFailing;
    state.HasFailed = state.HasFailed || fails;
    return fails;
}
} // namespace

AllocationFaults::AllocationFaults() noexcept
    : AllocationFaults(Never, false)
{
}

AllocationFaults::AllocationFaults(std::size_t number, bool lasting) noexcept
{
    state = {true, false, 0, number, lasting ? Never : number};
}

AllocationFaults::~AllocationFaults()
{
    Stop();
}

std::size_t AllocationFaults::Count() const noexcept
{
    return state.Count;
}

bool AllocationFaults::HaveOccurred() noexcept
{
    return state.HasFailed;
}

void AllocationFaults::Stop() noexcept
{
    state.IsActive = false;
}

AllocationFaults::Pause::Pause() noexcept
    : wasActive(std::exchange(state.IsActive, false))
{
}

AllocationFaults::Pause::~Pause()
{
    state.IsActive = wasActive;
}
} // namespace Fuzzing

extern "C"
{
    // The linker's --wrap=malloc sends the program's calls of malloc to the first and lets the second reach the real
    // one.
    void* __wrap_malloc(std::size_t size);
    void* __real_malloc(std::size_t size);
}

void* __wrap_malloc(std::size_t size)
{
    return Fuzzing::IsNextToFail() ? nullptr : __real_malloc(size);
}

// The C++ library's strings and containers allocate with these, too.
void* operator new(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
