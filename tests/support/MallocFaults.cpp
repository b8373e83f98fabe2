#include "support/MemoryFaults.h"

#include <cstddef>

extern "C"
{
    // The linker's --wrap=malloc sends the program's calls of malloc to the first and lets the second reach the real
    // one.
    void* __wrap_malloc(std::size_t size);
    void* __real_malloc(std::size_t size);
}

void* __wrap_malloc(std::size_t size)
{
    return Tests::MemoryFaults::Strikes() ? nullptr : __real_malloc(size);
}
