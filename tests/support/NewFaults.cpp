#include "support/MemoryFaults.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{
void* Allocate(std::size_t size) noexcept
{
    if (Tests::MemoryFaults::Strikes())
    {
        return nullptr;
    }
    const Tests::MemoryFaults::Scope spared(false); // one allocation strikes once, here or in malloc
    return std::malloc(size);
}
} // namespace

// All that the program and the C++ library allocate for objects, strings and containers.
void* operator new(std::size_t size)
{
    void* const memory = Allocate(size);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
